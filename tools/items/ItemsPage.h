#pragma once

#include <string>

namespace mlk {

/** The page docs/items.md: everything that the service looks for, from the product's tables. */
std::string itemsPage();

}  // namespace mlk
