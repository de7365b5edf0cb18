#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tools/mlktree/Tree.h"

namespace mlk::tree {

/** What a link says if it leads to no file; nothing for a path that is no such link. */
std::optional<std::string> linkTarget(const std::string& host);

/**
 * Searches the files that the paths of missing files probably mean. Reads each folder once. One
 * thread at a time.
 */
class NearFiles {
  public:
    /** @param tree  must outlive the object */
    explicit NearFiles(const Tree& tree) : mTree(tree) {}

    /** The existing path that differs in the case of letters only; empty if no path does. */
    std::string inAnotherCase(const std::string& host);

    /**
     * One with nearly the same name in the same folder, or with the same name in a near folder or
     * another partition. Empty if no file fits.
     *
     * @param host  a path of this machine
     */
    std::string nearFile(const std::string& host);

  private:
    struct Folder {
        std::vector<std::string> names;            /**< in byte order; without hidden ones */
        std::map<std::string, std::string> byCase; /**< of all names, by their small letters */
    };

    const Folder& folderAt(const std::string& path);

    const Tree& mTree;
    std::map<std::string, Folder> mFolders;
};

}  // namespace mlk::tree
