#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace mlk::tree {

/** Most boards that a product line has, and most receivers: a larger folder is not searched. */
inline constexpr size_t kMostBoards = 1'000;
inline constexpr size_t kMostReceivers = 10'000;

/** Most properties of which all are looked at; of more, those that the service knows. */
inline constexpr size_t kMostProperties = 10'000;

/** The ending of the INI files that are found by their folder. */
inline constexpr const char* kIniEnding = ".ini";

/** True if the path leads to a regular file. */
bool isRegularFile(const std::string& path);

/** True if the path leads to a folder. */
bool isFolder(const std::string& path);

/** The path of a file in a folder. */
std::string pathIn(const std::string& folder, const std::string& name);

/** The path up to its last "/", without that; empty if the path has no "/". */
std::string folderOf(const std::string& path);

/** The files that a folder has. */
struct FolderFiles {
    std::vector<std::string> names; /**< in byte order */
    bool isTooLarge = false;        /**< the folder has more than are wanted; there are no names */
};

/**
 * The regular files of a folder with that ending; none if there is no folder.
 *
 * @param most  if the folder has more of them, none is returned: which of them come first is a
 *              matter of chance
 */
FolderFiles filesIn(const std::string& hostFolder, std::string_view ending, size_t most);

}  // namespace mlk::tree
