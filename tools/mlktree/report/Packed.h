#pragma once

#include <string>
#include <string_view>

namespace mlk::tree {

/**
 * A text compressed as gzip has it, in base64. The same text gives the same result. A browser
 * unpacks it with DecompressionStream.
 *
 * @throw std::runtime_error if there is not enough memory
 */
std::string packed(std::string_view text);

/** Makes JSON fit for a script element: no byte of it can end the element or begin a comment. */
std::string inScript(std::string_view json);

}  // namespace mlk::tree
