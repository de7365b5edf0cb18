#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** The text after the last "/" of a path; a path without one is its own file name. */
std::string_view fileNameOf(std::string_view path);

/**
 * Removes the quotes from a path in double quotes.
 *
 * A path that begins with a double quote loses that quote, its last remaining quote and everything
 * after that. Any other path stays as it is; a quote inside it is part of the name.
 *
 * @return the path; nothing if the leading quote has no closing one: such a path names no file
 */
std::optional<std::string> withoutQuotes(std::string path);

/** True if the path exists, whatever the type of the file. */
bool pathExists(const std::string& path);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
