#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "regional/TextFile.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Reads a list file: one entry a line, which is the line up to its first comma; what follows is for
 * people. Empty lines are skipped, blanks and carriage returns belong to the entry. A line is at
 * most 255 bytes long; a longer one is cut. A file has at most kMostListBytes.
 *
 * @param path  the file, possibly in double quotes; empty, or with a lone opening quote, it names
 *              no file
 * @param take  called with each entry, in file order
 * @return UNREADABLE when the entries are not all there, which may show after some of them: the
 *         caller drops those, because a part of a list is not the list
 */
ReadResult readListFile(const std::string& path, const std::function<void(std::string_view)>& take);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
