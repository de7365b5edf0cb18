#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** The text after the last "/" of a path; a path without one is its own file name. */
std::string_view fileNameOf(std::string_view path);

/**
 * Takes the quotes off a path that is written in double quotes.
 *
 * Only a path whose first character is a double quote is touched: it loses that quote, and
 * everything from its last remaining quote on. A quote elsewhere is part of the name.
 *
 * @return the path; nothing when the leading quote has no partner, for such a path names no file
 */
std::optional<std::string> withoutQuotes(std::string path);

/** True when something exists under that path, whatever it is. */
bool pathExists(const std::string& path);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
