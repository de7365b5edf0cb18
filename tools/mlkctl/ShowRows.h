#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/common/Facts.h"
#include "tools/mlkctl/Services.h"

namespace mlk::ctl {

/** What the service answers to a question. */
using ShowValue = FactValue;

/** How a fact is asked for. */
struct ShowQuestion {
    const Interface* interface;
    /** Asks the object, which implements the interface. Throws Failure as BoundCall does. */
    std::function<ShowValue(IBase&)> ask;
};

/** One fact about a set. */
struct ShowRow {
    std::string group;  // its heading: one word
    std::string label;  // for a person
    std::string key;    // for a program
    ShowQuestion question;
};

/** All rows in the order in which they are shown; the rows of a group stand together. */
const std::vector<ShowRow>& showRows();

}  // namespace mlk::ctl
