#include "tools/mlktree/Rule.h"

#include <algorithm>

#include "tools/common/Suggest.h"
#include "tools/common/Text.h"

namespace mlk::tree {

namespace {

// The rule of that name among those of a family, or null.
const Rule* findIn(const RuleFamily& family, std::string_view name) {
    const Rule* const end = family.rules + family.count;
    const Rule* const found =
            std::find_if(family.rules, end, [&](const Rule& rule) { return rule.name == name; });
    return found != end ? found : nullptr;
}

}  // namespace

const RuleFamily* familyOf(std::string_view rule) {
    const std::vector<RuleFamily>& families = ruleFamilies();
    const auto found =
            std::find_if(families.begin(), families.end(),
                         [&](const RuleFamily& family) { return findIn(family, rule) != nullptr; });
    return found != families.end() ? &*found : nullptr;
}

const Rule* findRule(std::string_view name) {
    const RuleFamily* const family = familyOf(name);
    return family != nullptr ? findIn(*family, name) : nullptr;
}

std::string noRule(std::string_view name, bool isSuggesting) {
    std::string problem = "there is no rule " + excerpt(name);
    if (!isSuggesting) {
        return problem;
    }
    std::vector<std::string_view> names;
    for (const RuleFamily& family : ruleFamilies()) {
        for (size_t i = 0; i < family.count; ++i) {
            names.push_back(family.rules[i].name);
        }
    }
    return problem + didYouMean(name, names, "; mlktree rules lists them");
}

}  // namespace mlk::tree
