// All families of rules.

#include "tools/mlktree/rules/Families.h"

namespace mlk::tree {

const std::vector<RuleFamily>& ruleFamilies() {
    static const std::vector<RuleFamily> families = {
            readingSpoilt(), readingBytes(),   readingLines(), readingValues(), replacing(),
            models(),        identity(),       paths(),        pathForms(),     names(),
            boardNames(),    auxiliaryNames(), itemValues(),   missingItems(),  ownItems(),
            features(),      properties(),     unused(),       countries(),     languages(),
            coverage(),      planLines(),      channels(),     xml(),           maps(),
            tvSystems(),     savedCountry(),   allowing(),
    };
    return families;
}

}  // namespace mlk::tree
