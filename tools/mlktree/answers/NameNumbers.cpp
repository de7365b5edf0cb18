#include "tools/mlktree/answers/NameNumbers.h"

#include <algorithm>
#include <numeric>
#include <tuple>

#include "common/TextHash.h"
#include "tools/mlktree/Parallel.h"

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

void sortNames(NameNumbers& names, LineAnswers& line) {
    line.names = names.sort();
    forEachInParallel(line.items.size(), [&](size_t i) {
        ItemPiece& piece = line.items[i];
        for (AnswerItem& item : piece) {
            item.name = names.sorted(item.name);
        }
        const auto isBefore = [](const AnswerItem& a, const AnswerItem& b) {
            return a.name < b.name;
        };
        std::stable_sort(piece.begin(), piece.end(), isBefore);
        const auto end = std::unique(
                piece.rbegin(), piece.rend(),
                [](const AnswerItem& a, const AnswerItem& b) { return a.name == b.name; });
        piece.erase(piece.begin(), end.base());
    });
    forEachInParallel(line.delays.size(), [&](size_t i) {
        DelayPiece& piece = line.delays[i];
        for (AnswerDelay& delay : piece) {
            delay.name = names.sorted(delay.name);
        }
        std::sort(piece.begin(), piece.end(), [](const AnswerDelay& a, const AnswerDelay& b) {
            return std::tie(a.receiver, a.name) < std::tie(b.receiver, b.name);
        });
    });
}

}  // namespace mlk::tree
