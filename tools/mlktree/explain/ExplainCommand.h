#pragma once

#include <string_view>
#include <vector>

namespace mlk::tree {

/** The words after `explain` that stand for a topic and not for a section, for completion. */
std::vector<std::string_view> explainTopics();

}  // namespace mlk::tree
