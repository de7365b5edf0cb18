#pragma once

#include <string>
#include <string_view>

namespace mlk::tree {

/**
 * A text of a file as XML, in an element or an attribute: it is never markup, and has no character
 * that XML forbids, since shownText() writes these as escapes.
 */
std::string xmlText(std::string_view text);

}  // namespace mlk::tree
