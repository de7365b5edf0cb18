#pragma once

#include <string_view>

namespace mlk::tree {

/**
 * The country that a two- or three-letter code of ISO 3166-1 stands for, as the service spells it;
 * empty for any other text. Case makes no difference.
 */
std::string_view countryOfCode(std::string_view code);

}  // namespace mlk::tree
