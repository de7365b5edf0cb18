#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "tools/common/Facts.h"

namespace mlk {

/** What a table of a set's facts needs beside the facts. */
struct FactFrame {
    /** Gives a path as the partitions' files have it; null for paths that are shown as they are. */
    std::function<std::string(const std::string&)> asWritten = nullptr;
    std::set<std::string> missing = {};  // paths of the facts that do not exist
    bool styled = false;                 // with colours and other styles of a terminal
};

/** The columns of a table of facts. */
constexpr size_t kFactWidth = 60;

/** The facts as lines of at most kFactWidth columns under headings. */
std::string factTable(const std::vector<Fact>& facts, const FactFrame& frame);

}  // namespace mlk
