#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "tools/mlkctl/Services.h"

namespace mlk::ctl {

/** Why a row has no value, for a person: "(no answer)". */
struct NoValue {
    std::string why;
};

/** Names and their numbers, in the order in which they are shown. */
using Counts = std::vector<std::pair<std::string, int32_t>>;

/** Kinds of a file and their paths, in order; empty for none. */
using Files = std::vector<std::pair<std::string, std::string>>;

/** Short names that are shown side by side. */
struct Names {
    std::vector<std::string> list;
};

/** A value. Of a vector of texts each has its own line. */
using ShowValue = std::variant<NoValue, std::string, int32_t, bool, std::vector<std::string>, Names,
                               Counts, Files>;

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
