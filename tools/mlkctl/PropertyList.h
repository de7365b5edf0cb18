#pragma once

#include <string>
#include <utility>
#include <vector>

namespace mlk::ctl {

/** System properties: keys and values. */
using Properties = std::vector<std::pair<std::string, std::string>>;

/** All properties of this set, in ascending order of their keys. */
Properties allProperties();

}  // namespace mlk::ctl
