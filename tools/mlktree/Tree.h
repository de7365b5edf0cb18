#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "common/Partitions.h"

namespace mlk::tree {

using vendor::morlak::mlkconfigs::V1_0::implementation::isInPartition;
using vendor::morlak::mlkconfigs::V1_0::implementation::kPartitionNames;
using vendor::morlak::mlkconfigs::V1_0::implementation::Partitions;

/** A tree or a command line that cannot be used; the program ends with status 2. */
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/** The tree has nothing of the name that is asked for; the program ends with status 1. */
class NotFound : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/**
 * A partition tree: the folders of this machine that hold the three partitions.
 *
 * A path has three forms. As written in the partitions: "/tvconfigs/board/b2.ini". Relative to the
 * tree: "tvconfigs/board/b2.ini", which findings have. On this machine: what is opened. Immutable
 * and thread-safe.
 */
class Tree {
  public:
    /** Folders that --tvconfigs, --tvdata and --impdata name; empty for those of the tree. */
    struct Apart {
        std::string tvconfigs;
        std::string tvdata;
        std::string impdata;
    };

    /**
     * @param root   the folder of the tree; empty if all three partitions are named apart
     * @param apart  partitions that lie elsewhere
     * @throw UsageError if there is no tvconfigs folder, with what was looked for
     */
    Tree(std::string root, const Apart& apart);

    /** The folder of the tree. */
    const std::string& root() const { return mRoot; }

    /** The folders of the partitions on this machine, without a slash at the end. */
    const Partitions& partitions() const { return mPartitions; }

    /** The path of a file of this machine, relative to the tree; the path itself if it lies
     * outside. */
    std::string relative(std::string_view hostPath) const;

    /** The path as written, for a file of this machine; the path itself if it lies outside. */
    std::string written(std::string_view hostPath) const;

    /** The file of this machine that a relative path names. */
    std::string host(std::string_view relativePath) const;

    /**
     * The file of this machine that a value names: "/tvconfigs", "/tvdata" or "/impdata" at its
     * start becomes the folder, as in the service, whether or not a "/" follows.
     */
    std::string hostOfWritten(std::string_view writtenPath) const;

    /**
     * The file of this machine that a word of the command line names: as written in the partitions,
     * relative to the tree, or a path of this machine, in this order. A file of a partition has the
     * name that it has below partitions(), by whatever links or dots the word leads there.
     *
     * @throw UsageError if the word is empty
     */
    std::string hostOfArgument(const std::string& argument) const;

  private:
    std::string nameInPartitions(const std::string& hostPath) const;

    std::string mRoot;
    Partitions mPartitions;
};

}  // namespace mlk::tree
