#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace mlk::tree {

/** How much a finding matters; a larger one matters more. */
enum class Severity { OFF, NOTE, WARNING, ERROR };

/** "note", "warning" or "error"; "off" for OFF. */
std::string_view nameOf(Severity severity);

/** A place in a file of the tree. */
struct Place {
    std::string file;  /**< relative to the tree: "tvconfigs/model/a.ini" */
    size_t line = 0;   /**< from 1; 0 for the file as a whole */
    size_t column = 0; /**< in bytes, from 1; 0 for the line as a whole */
};

/** Another place that belongs to a finding, and what it has to do with it. */
struct Related {
    Place place;
    std::string message;
};

/** A mistake, or something worth knowing, at the place where the engineer has to type. */
struct Finding {
    std::string rule; /**< name of the rule that found it */
    Severity severity = Severity::NOTE;
    Place place;
    std::string message; /**< one sentence without a full stop: what is wrong and what is right */
    /**
     * The sets that it concerns, each entry a group: "model=2", "model=2,board=b1.ini",
     * "country=GERMANY". What an entry leaves out is any. "all" stands for every set; the list is
     * empty for a file that no set uses.
     */
    std::vector<std::string> sets;
    std::vector<Related> related;
    /**
     * The lines of the place's file that this finding spoils, `last` included: what other rules
     * find there follows from it. Line 0 is the file as a whole; an empty range spoils nothing.
     */
    struct Lines {
        size_t first = 1;
        size_t last = 0;
    } spoilt = {};
};

/** A whole file, for Finding::spoilt. */
inline constexpr Finding::Lines kWholeFile{0, static_cast<size_t>(-1)};

/** Orders findings by file, line, column, rule and message. */
bool operator<(const Finding& a, const Finding& b);

}  // namespace mlk::tree
