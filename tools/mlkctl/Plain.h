#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace mlk::ctl {

/**
 * The bare value of an answer that is printed as JSON, for a script, without a newline at its end:
 * a text's bytes, a number, true or false; of a list a line for each, of an item KEY=VALUE, of a
 * channel its fields with tabs between them. Nothing for an answer without a value: no success, an
 * empty text or an empty list. The answer must be one that print() makes.
 */
std::optional<std::string> plainOf(std::string_view answer);

}  // namespace mlk::ctl
