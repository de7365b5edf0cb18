// Alternatives to our store of INI items, each using its library as intended. All take a path and
// three mount points, answer getInfo with a copy made under a lock, and report their content. They
// throw std::runtime_error if the file cannot be read.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct _GKeyFile;

namespace mlk::bench {

/** Replacements for the partition names at the start of a value. */
struct Mounts {
    const char* tvdata;
    const char* tvconfigs;
    const char* impdata;
};

/** Section, without brackets, and key. */
using Name = std::pair<std::string, std::string>;
using NamedValues = std::map<Name, std::string>;

/** The names of an item in a question. */
struct Question {
    std::string category;  // with brackets
    std::string section;   // without
    std::string key;
};

/** Orders names, shorter ones first, without copying them. */
struct LengthFirst {
    using is_transparent = void;
    using View = std::pair<std::string_view, std::string_view>;
    static int compare(std::string_view a, std::string_view b) {
        if (a.size() != b.size()) {
            return a.size() < b.size() ? -1 : 1;
        }
        return a.compare(b);
    }
    bool operator()(const View& a, const View& b) const {
        const int order = compare(a.first, b.first);
        return order != 0 ? order < 0 : compare(a.second, b.second) < 0;
    }
};

/**
 * Applies the rules of the format literally and fills a map. Copies every text that it passes on,
 * and both names for each lookup.
 */
class LiteralStore {
  public:
    LiteralStore(const std::string& path, const Mounts& mounts);
    std::string getInfo(const Question& question) const;
    NamedValues items() const;

  private:
    void addNewItem(std::string category, std::string line, const Mounts& mounts);
    std::string find(Name names) const;

    std::map<Name, std::string, LengthFirst> mItems;
    mutable std::mutex mMutex;
};

/** A simple loop around std::getline. */
class GetlineStore {
  public:
    GetlineStore(const std::string& path, const Mounts&);
    NamedValues items() const { return mItems; }

  private:
    NamedValues mItems;
};

/** Fills a map from the callbacks of inih. */
class InihStore {
  public:
    InihStore(const std::string& path, const Mounts&);
    NamedValues items() const { return mItems; }

  private:
    NamedValues mItems;
};

/** SimpleIni, which is its own store. */
class SimpleIniStore {
  public:
    SimpleIniStore(const std::string& path, const Mounts&);
    ~SimpleIniStore();
    SimpleIniStore(const SimpleIniStore&) = delete;
    SimpleIniStore& operator=(const SimpleIniStore&) = delete;
    NamedValues items() const;

  private:
    struct File;
    const std::unique_ptr<File> mFile;
};

/** GLib's GKeyFile, which is its own store. */
class KeyFileStore {
  public:
    /** A text allocated by GLib, which each lookup copies. */
    using Text = std::unique_ptr<char, void (*)(void*)>;

    KeyFileStore(const std::string& path, const Mounts&);
    ~KeyFileStore();
    KeyFileStore(const KeyFileStore&) = delete;
    KeyFileStore& operator=(const KeyFileStore&) = delete;
    Text getInfo(const Question& question) const;
    NamedValues items() const;

  private:
    _GKeyFile* const mFile;
    mutable std::mutex mMutex;
};

/** Boost.PropertyTree, which is its own store. */
class PropertyTreeStore {
  public:
    PropertyTreeStore(const std::string& path, const Mounts&);
    ~PropertyTreeStore();
    PropertyTreeStore(const PropertyTreeStore&) = delete;
    PropertyTreeStore& operator=(const PropertyTreeStore&) = delete;
    NamedValues items() const;

  private:
    struct Tree;
    const std::unique_ptr<Tree> mTree;
};

/** A std::map with the order above, searched by views. Filled by the literal reader. */
class MapStore {
  public:
    MapStore(const std::string& path, const Mounts& mounts);
    std::string getInfo(const Question& question) const;
    NamedValues items() const { return {mItems.begin(), mItems.end()}; }

  private:
    std::map<Name, std::string, LengthFirst> mItems;
    mutable std::mutex mMutex;
};

/** A sorted vector with the order above. Filled by the literal reader. */
class SortedStore {
  public:
    SortedStore(const std::string& path, const Mounts& mounts);
    std::string getInfo(const Question& question) const;
    NamedValues items() const { return {mItems.begin(), mItems.end()}; }

  private:
    std::vector<std::pair<Name, std::string>> mItems;
    mutable std::mutex mMutex;
};

}  // namespace mlk::bench
