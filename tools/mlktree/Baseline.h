#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tools/mlktree/CheckReport.h"

namespace mlk::tree {

/**
 * What makes a finding the same after the file has changed elsewhere: rule, file, message without
 * numbers of lines, and the text of the source line. Not its number.
 */
struct Identity {
    std::string rule;
    std::string file;
    std::string message;
    std::string text;
};

bool operator<(const Identity& a, const Identity& b);

/** The identity of a finding, in texts that are valid Unicode. */
Identity identityOf(const Finding& finding, const LineOf& lineOf);

/** Findings that are known: each of them, and how often. */
class Baseline {
  public:
    Baseline() = default;

    /** Of these findings. */
    Baseline(const std::vector<Finding>& findings, const LineOf& lineOf);

    /**
     * Reads what text() wrote.
     *
     * @param path  the file, for messages
     * @throw UsageError if the text is no baseline
     */
    static Baseline parse(std::string_view text, const std::string& path);

    /** JSON, one finding a line, in an order that does not change from run to run. */
    std::string text() const;

    /** Takes the known findings out of a report, which afterwards has a baseline. */
    void apply(CheckReport& report, const LineOf& lineOf) const;

    /** The number of findings. */
    size_t size() const;

  private:
    std::map<Identity, size_t> mKnown;
};

/** Makes a short text of each finding's identity, different for equal ones. */
class Fingerprints {
  public:
    explicit Fingerprints(LineOf lineOf) : mLineOf(std::move(lineOf)) {}
    std::string next(const Finding& finding);

  private:
    LineOf mLineOf;
    std::map<Identity, size_t> mSeen;
};

}  // namespace mlk::tree
