#pragma once

#include <string>
#include <string_view>

#include "tools/mlktree/ProductLine.h"

namespace mlk::tree {

/** Where a path leads, as written in a file. */
enum class PathForm {
    INSIDE,   /**< into one of the partitions */
    BESIDE,   /**< to a folder that has nearly the name of a partition, as "/tvdataX" */
    OUTSIDE,  /**< elsewhere on the television, or out of a partition by ".." */
    RELATIVE, /**< does not begin with a "/" */
};

/** True if a path begins with a partition and ".." leads it out of that. */
bool leavesPartition(std::string_view path);

/** The form of a path that is not empty. */
PathForm formOf(std::string_view path);

/** The partition that a path of the form BESIDE probably means, as "/tvdata". */
std::string_view partitionMeantBy(std::string_view path);

/**
 * The part of a path that begins with a partition, if something else stands before it:
 * "/tvconfigs/a.ini" of "/vendor/tvconfigs/a.ini". Backslashes become slashes. Empty if the path
 * names no partition, or begins with one.
 */
std::string pathInside(std::string_view path);

/** The path that the line names: its value, or what the service makes of that of board_id.bin. */
std::string pathIn(const Naming& naming);

/** The form of pathIn(). */
PathForm formOf(const Naming& naming);

/** True if the value of the line is a path as written, not a part of one as in a map of plans. */
bool isWholePath(const Naming& naming);

/** True if the service reads the item of the line, or the line belongs to the chain of files. */
bool isOfService(const Naming& naming);

}  // namespace mlk::tree
