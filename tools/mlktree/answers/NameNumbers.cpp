#include "tools/mlktree/answers/NameNumbers.h"

#include <algorithm>
#include <numeric>
#include <tuple>

#include "common/TextHash.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

uint32_t NameNumbers::of(std::string_view section, std::string_view key) {
    const uint32_t hash = product::shortHash(product::hashText(key, product::hashText(section, 0)));
    uint32_t& number = mIndex.findOrAdd(hash, [&](uint32_t other) {
        return mNames[other].key == key && mNames[other].section == section;
    });
    if (number == product::HashIndex::kNone) {
        number = static_cast<uint32_t>(mNames.size());
        mNames.push_back({section, key});
    }
    return number;
}

std::vector<AnswerName> NameNumbers::sort() {
    std::vector<uint32_t> order(mNames.size());
    std::iota(order.begin(), order.end(), 0U);
    std::sort(order.begin(), order.end(), [this](uint32_t a, uint32_t b) {
        return std::tie(mNames[a].section, mNames[a].key) <
               std::tie(mNames[b].section, mNames[b].key);
    });
    mSorted.resize(mNames.size());
    std::vector<AnswerName> names;
    names.reserve(mNames.size());
    for (const uint32_t preliminary : order) {
        mSorted[preliminary] = static_cast<uint32_t>(names.size());
        names.push_back(mNames[preliminary]);
    }
    return names;
}

}  // namespace mlk::tree
