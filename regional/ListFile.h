#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Reads a list file: one entry a line, which is the line up to its first comma; what follows is for
 * people. Empty lines are skipped, blanks and carriage returns belong to the entry. A line is at
 * most 255 bytes long; a longer one is cut.
 *
 * @param path  the file, possibly in double quotes; empty, or with a lone opening quote, it names
 *              no file
 * @param take  called with each entry, in file order
 * @return false when there is no such file; a file that cannot be opened reads as empty
 */
bool readListFile(const std::string& path, const std::function<void(std::string_view)>& take);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
