#include "tools/mlktree/Checker.h"

#include <algorithm>
#include <iterator>
#include <tuple>

#include "tools/mlktree/Parallel.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/Rule.h"

namespace mlk::tree {

std::vector<Finding> check(const ProductLine& line) {
    std::vector<const Rule*> rules;
    for (const RuleFamily& family : ruleFamilies()) {
        for (size_t i = 0; i < family.count; ++i) {
            rules.push_back(&family.rules[i]);
        }
    }
    std::vector<std::vector<Finding>> found(rules.size());
    forEachInParallel(rules.size(), [&](size_t i) {
        Reporter reporter(line, *rules[i]);
        rules[i]->check(line, reporter);
        found[i] = reporter.take();
    });
    std::vector<Finding> all;
    for (std::vector<Finding>& findings : found) {
        std::move(findings.begin(), findings.end(), std::back_inserter(all));
    }
    std::sort(all.begin(), all.end());
    const auto isSame = [](const Finding& a, const Finding& b) { return !(a < b) && !(b < a); };
    all.erase(std::unique(all.begin(), all.end(), isSame), all.end());
    return all;
}

}  // namespace mlk::tree
