#pragma once

#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "common/Properties.h"

namespace mlk::tree {

/** Most bytes of a property's value. */
inline constexpr size_t kLongestProperty = 91;

/**
 * The system properties of a tree: the files of its data/property folder, and those of --prop.
 *
 * The files are read by the host's property store, so that damaged ones count as they do for the
 * service. set() keeps the value in memory: nothing is written. Thread-safe.
 */
class TreeProperties : public vendor::morlak::mlkconfigs::V1_0::implementation::Properties {
  public:
    /**
     * @param folder  the folder of the property files; it may be missing
     * @param given   "KEY=VALUE" of the command line; a value replaces the file's
     * @throw UsageError if one has no "=", no valid key, or a value of more than 91 bytes
     */
    TreeProperties(std::string folder, const std::vector<std::string>& given);

    std::string get(const char* key) const override;
    bool getBool(const char* key, bool defaultValue) const override;
    int32_t getInt32(const char* key, int32_t defaultValue) const override;
    bool set(const char* key, const char* value) override;

    /** The keys of all properties, in byte order. */
    std::vector<std::string> keys() const;
    /** True if the tree has a folder of properties or one was given. */
    bool isKnown() const { return mIsKnown; }
    /** True if --prop gave the property. */
    bool isGiven(const std::string& key) const;

  private:
    std::string mFolder;
    bool mIsKnown = false;
    std::map<std::string, std::string> mGiven;
    mutable std::mutex mMutex;  // guards mSet
    std::map<std::string, std::string> mSet;
};

}  // namespace mlk::tree
