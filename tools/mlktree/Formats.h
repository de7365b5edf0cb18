#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/common/TextSink.h"
#include "tools/mlktree/CheckReport.h"
#include "tools/mlktree/Rule.h"

namespace mlk::tree {

/** What a format needs besides the report. */
struct FormatContext {
    LineOf lineOf;
    const std::vector<RuleFamily>& families; /**< must outlive the object */
    Severity threshold = Severity::WARNING;  /**< what --fail-on says */
    bool isColoured = false;
    std::string treeUri; /**< "file:///...", with a slash at its end */
    /** The file that a path relative to the tree has, seen from the current folder. */
    std::function<std::string(const std::string&)> fromHere;
};

/** Prints a report. Texts of files are never commands to who reads the output. */
using Format = void (*)(const CheckReport& report, const FormatContext& context,
                        const TextSink& sink);

void formatText(const CheckReport& report, const FormatContext& context, const TextSink& sink);
void formatJson(const CheckReport& report, const FormatContext& context, const TextSink& sink);
void formatSarif(const CheckReport& report, const FormatContext& context, const TextSink& sink);
void formatGithub(const CheckReport& report, const FormatContext& context, const TextSink& sink);
void formatJunit(const CheckReport& report, const FormatContext& context, const TextSink& sink);

/** The formats of `mlktree check`, by name; the first is the default. */
const std::vector<std::pair<std::string_view, Format>>& formats();

/** "2 errors, 1 warning, 3 notes in 57 files, 1,240 sets". */
std::string summaryOf(const CheckReport& report);

/** The sets of a finding in words: "in model=2; model=3"; empty if it concerns all. */
std::string setsInWords(const Finding& finding);

/** A path as the path of a URI (RFC 3986). */
std::string uriOf(std::string_view path);

/** True if a finding has the severity of the threshold or more. */
bool isFailed(const std::vector<Finding>& findings, Severity threshold);

}  // namespace mlk::tree
