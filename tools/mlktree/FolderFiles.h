#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mlk::tree {

/** The ending of the INI files that are found by their folder. */
inline constexpr const char* kIniEnding = ".ini";

/** True if the path leads to a regular file. */
bool isRegularFile(const std::string& path);

/** The path of a file in a folder. */
std::string pathIn(const std::string& folder, const std::string& name);

/** The path up to its last "/", without that; empty if the path has no "/". */
std::string folderOf(const std::string& path);

/** The regular files of a folder with that ending, in byte order; empty if there is no folder. */
std::vector<std::string> filesIn(const std::string& hostFolder, std::string_view ending);

}  // namespace mlk::tree
