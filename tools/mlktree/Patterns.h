#pragma once

#include <regex>
#include <string>
#include <string_view>

namespace mlk::tree {

/** Whether the whole text fits: "*" stands for any characters, "?" for one, the rest for itself. */
bool fitsWildcards(std::string_view pattern, std::string_view text);

/**
 * Whether a path relative to the tree fits a pattern: "*" and "?" stand for characters of one name,
 * a name "**" for any number of folders. A pattern without "/" fits the file name in any folder.
 */
bool fitsPath(std::string_view pattern, std::string_view path);

/**
 * A regular expression of ECMAScript for whole values, which takes a time that grows with the
 * length of the value only, where the library can do that.
 *
 * @throw std::regex_error
 */
std::regex valuePattern(const std::string& text);

}  // namespace mlk::tree
