#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace vendor::morlak::mlkconfigs::V1_0::implementation::plain {

/** From category and key to value. The order has no meaning. */
using Items = std::map<std::pair<std::string, std::string>, std::string>;

/** The content of a regular file; empty for anything else. */
std::string contentOf(const std::string& path);

/** The lines of a text as all readers see them: cut after `most` bytes and at a NUL. */
std::vector<std::string> linesOf(const std::string& text, size_t most);

/** A value or a section name of a project file, cleaned. */
std::string cleaned(std::string text);

/** The items of a project file of that text: its grammar, step by step, for tests. */
Items projectItems(const std::string& text);

/** The items of an auxiliary file of that text: its grammar, step by step, for tests. */
Items auxiliaryItems(const std::string& text);

/** The items as a store dumps them, in its order: "<indent><category>:<key>=<value>" a line. */
std::string dumpOf(const Items& items, const std::string& indent);

/** A random text of short lines of characters that have a meaning in the two grammars. */
std::string randomFile(unsigned int seed);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation::plain
