#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "tools/common/Json.h"

/** What there is to tell about a set, for a person and for a program. */
namespace mlk {

/** Why a fact has no value, for a person: "(no answer)". */
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
using FactValue = std::variant<NoValue, std::string, int32_t, bool, std::vector<std::string>, Names,
                               Counts, Files>;

/** What a fact is called. */
struct FactName {
    std::string group;  // its heading: one word
    std::string label;  // for a person
    std::string key;    // for a program
};

/** One fact about a set. The facts of a group stand together. */
struct Fact {
    FactName name;
    FactValue value;
    /** What is to be said of each line of the value, as "board"; may be shorter than the value. */
    std::vector<std::string> notes = {};
};

/** The paths among the facts: texts that begin with a slash. */
std::set<std::string> pathsIn(const std::vector<Fact>& facts);

/**
 * A JSON object with an object for each group, with null for a fact without a value, and "missing"
 * with these paths.
 */
JsonObject factsJson(const std::vector<Fact>& facts, const std::set<std::string>& missing);

/** The same of one value. */
std::string jsonOf(const FactValue& value);

}  // namespace mlk
