#pragma once

#include <map>
#include <string>
#include <utility>

namespace vendor::morlak::mlkconfigs::V1_0::implementation::plain {

/** Category and key, then value, in no special order of ours. */
using Items = std::map<std::pair<std::string, std::string>, std::string>;

/** What a project file of that text holds: its grammar written down step by step, for tests. */
Items projectItems(const std::string& text);

/** What an auxiliary file of that text holds: its grammar written down step by step, for tests. */
Items auxiliaryItems(const std::string& text);

/** A text of short lines made of what the two grammars care about. */
std::string randomFile(unsigned int seed);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation::plain
