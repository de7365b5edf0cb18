#include "tools/mlktree/CountryBlocks.h"

#include <algorithm>

namespace mlk::tree {

const ReadLine* CountryBlock::find(std::string_view element) const {
    const auto found =
            std::find_if(elements.begin(), elements.end(), [element](const ReadLine* read) {
                return read->use == LineUse::ITEM && read->key == element;
            });
    return found != elements.end() ? *found : nullptr;
}

std::vector<CountryBlock> blocksOf(const FileLines& map) {
    std::vector<CountryBlock> blocks;
    for (const ReadLine& read : map.lines()) {
        if (read.use == LineUse::SECTION) {
            blocks.push_back({&read, {}});
        } else if (!read.owner.empty() && !blocks.empty()) {
            blocks.back().elements.push_back(&read);
        }
    }
    return blocks;
}

size_t countIgnoredBlocks(const FileLines& map) {
    return static_cast<size_t>(
            std::count_if(map.lines().begin(), map.lines().end(), [](const ReadLine& read) {
                return read.use == LineUse::IGNORED && read.owner.empty();
            }));
}

}  // namespace mlk::tree
