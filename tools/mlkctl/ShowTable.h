#pragma once

#include <set>
#include <string>
#include <vector>

#include "tools/mlkctl/Mounts.h"
#include "tools/mlkctl/ShowRows.h"

namespace mlk::ctl {

/** What a table of a set's facts needs beside the facts. */
struct ShowFrame {
    Mounts mounts = Mounts({});     // paths below them are shown as the partitions' files have them
    std::set<std::string> missing;  // paths of the facts that do not exist
    bool styled = false;            // with colours and other styles of a terminal
};

/** The facts, one for each of showRows(), as lines of at most 60 columns under headings. */
std::string showTable(const std::vector<ShowValue>& answers, const ShowFrame& frame);

/** The paths among the facts: texts that begin with a slash. */
std::set<std::string> pathsIn(const std::vector<ShowValue>& answers);

}  // namespace mlk::ctl
