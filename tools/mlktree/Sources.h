#pragma once

#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "tools/mlktree/Tree.h"

namespace mlk::tree {

/**
 * The bytes of the tree's files, for what readers do not tell: the source line of a finding, and
 * columns in XML. Reads a file when it is first asked for. Thread-safe.
 */
class Sources {
  public:
    /** A larger file has no source lines. */
    static constexpr size_t kMostBytes = size_t{64} << 20U;

    explicit Sources(const Tree& tree) : mTree(tree) {}
    Sources(const Sources&) = delete;
    Sources& operator=(const Sources&) = delete;

    /**
     * The lines of a file without their line feeds; empty if it cannot be read. Valid as long as
     * the object.
     *
     * @param path  relative to the tree
     */
    const std::vector<std::string_view>& lines(const std::string& path) const;

    /** A line by its number, from 1; empty if there is no such line. */
    std::string_view line(const std::string& path, size_t number) const;

    /** Whether the last line of a file has its line feed; also for an empty file. */
    bool endsInLineFeed(const std::string& path) const;

  private:
    struct File {
        std::string text;
        std::vector<std::string_view> lines;
    };

    const Tree& mTree;
    mutable std::mutex mMutex;
    mutable std::map<std::string, File> mFiles;  // guarded by mMutex; never shrinks
};

}  // namespace mlk::tree
