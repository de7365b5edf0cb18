#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/mlktree/Finding.h"

namespace mlk::tree {

class ProductLine;
class Reporter;

/** One rule of the checker: a row of a family's table (rules/ *.cpp). */
struct Rule {
    std::string_view name;    /**< "missing-file": words of small letters, joined by "-" */
    Severity severity;        /**< unless mlktree.toml says otherwise */
    std::string_view summary; /**< what it finds, in one line */
    std::string_view why;     /**< why that matters: what the television would do */
    std::string_view bad;     /**< an example that breaks the rule */
    std::string_view good;    /**< the same, mended */
    /** Looks at the whole line and reports. Runs beside other rules: must not change anything. */
    void (*check)(const ProductLine& line, Reporter& reporter);
};

/** Rules of one kind, in the order of `mlktree rules`. */
struct RuleFamily {
    std::string_view name;  /**< "reading", "replacing", "meaning", "regional", "features" */
    std::string_view title; /**< heading in `mlktree rules` */
    const Rule* rules;
    size_t count;
};

/** The name of the family of rules about comments and tables that allow findings. */
inline constexpr std::string_view kAllowingFamily = "allowing";

/** All families, in the order of `mlktree rules`. */
const std::vector<RuleFamily>& ruleFamilies();

/** The rule of that name, or null. */
const Rule* findRule(std::string_view name);

/** The family of the rule of that name, or null. */
const RuleFamily* familyOf(std::string_view rule);

/**
 * What is wrong with a name that no rule has: `there is no rule "tba"; did you mean tab?`.
 *
 * @param isSuggesting  false leaves out what may be meant, which takes a search
 */
std::string noRule(std::string_view name, bool isSuggesting = true);

}  // namespace mlk::tree
