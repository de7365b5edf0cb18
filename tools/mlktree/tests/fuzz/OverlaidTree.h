#pragma once

#include <string>
#include <string_view>
#include <vector>

/** A copy of a tree, with the files of a fuzzer's input instead of some of its own. */
class OverlaidTree {
  public:
    /**
     * @param path  the folder of the copy; it is filled if it is empty
     * @param base  the folder that is copied
     */
    OverlaidTree(std::string path, std::string base);

    /** Makes the copy what it was. */
    ~OverlaidTree();
    OverlaidTree(const OverlaidTree&) = delete;
    OverlaidTree& operator=(const OverlaidTree&) = delete;

    /** Writes the files of an input, see TreeFuzzer.cpp. Files of other forms are left out. */
    void layOver(std::string_view input);

    const std::string& path() const { return mPath; }

    /** True for a file of the copy, by its path relative to it. */
    bool has(const std::string& path) const;

  private:
    void lay(const std::string& path, std::string_view text);

    const std::string mPath;
    const std::string mBase;
    std::vector<std::string> mChanged;  // files and new folders, relative
};
