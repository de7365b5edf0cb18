// All families of rules.

#include "tools/mlktree/rules/Families.h"

namespace mlk::tree {

const std::vector<RuleFamily>& ruleFamilies() {
    static const std::vector<RuleFamily> families = {
            readingSpoilt(),  readingBytes(), readingLines(), readingValues(), replacing(),
            models(),         identity(),     paths(),        pathForms(),     names(),
            auxiliaryNames(), itemValues(),   missingItems(), ownItems(),      features(),
            properties(),     unused(),       countries(),    languages(),     coverage(),
            planLines(),      channels(),     xml(),          maps(),          tvSystems(),
            savedCountry(),   allowing(),
    };
    return families;
}

const Rule* findRule(std::string_view name) {
    for (const RuleFamily& family : ruleFamilies()) {
        for (size_t i = 0; i < family.count; ++i) {
            if (family.rules[i].name == name) {
                return &family.rules[i];
            }
        }
    }
    return nullptr;
}

}  // namespace mlk::tree
