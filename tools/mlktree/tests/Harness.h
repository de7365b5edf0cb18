#pragma once

#include <string>
#include <vector>

#include "host/testing/TempDir.h"
#include "tools/mlktree/CheckReport.h"
#include "tools/mlktree/Formats.h"

namespace mlk::tree {

/** What a command line did. */
struct Outcome {
    int status;
    std::string out;
    std::string err;
};

/** Runs mlktree with these words in this process; `root` is MLK_ROOT. */
Outcome runMlktree(const std::vector<std::string>& words, const std::string& root = "");

/** Copies tests/rules/base, a sound tree, into the folder; its one note is allowed there. */
void copySoundTree(const mlk::testing::TempDir& dir);

/** A finding at a place. */
Finding finding(const std::string& rule, Severity severity, const Place& place,
                const std::string& message);

/** Gives the lines of these files for LineOf: file, then its text. */
LineOf linesOf(const std::vector<std::pair<std::string, std::string>>& files);

/** The text that a format prints. */
std::string printed(Format format, const CheckReport& report, const FormatContext& context);

}  // namespace mlk::tree
