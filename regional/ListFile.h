#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "common/ReadObserver.h"
#include "regional/TextFile.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Reads a list file with one entry per line. An entry ends at the first comma; the text after it is
 * a comment. Commas at the start of a line are skipped. Empty lines are skipped; blanks and
 * carriage returns belong to the entry. A line longer than 255 bytes is cut. A file has at most
 * kMostListBytes.
 *
 * @param path  the file, possibly in double quotes; an empty path or one with a lone opening quote
 *              counts as missing
 * @param take  called with each entry in file order
 * @param observer  hears of every line; null for none
 * @return UNREADABLE if not all entries could be read; `take` may have got some of them by then,
 * and the caller must drop those
 */
ReadResult readListFile(const std::string& path, const std::function<void(std::string_view)>& take,
                        ReadObserver* observer = nullptr);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
