#include "tools/mlktree/matrix/MatrixPart.h"

#include <algorithm>

namespace mlk::tree {

uint32_t MatrixValues::of(std::string_view text) {
    const auto [entry, isNew] =
            mNumbers.try_emplace(text, static_cast<uint32_t>(mTexts.size() + 1));
    if (isNew) {
        mTexts.push_back(text);
    }
    return entry->second;
}

bool MatrixPart::differs(size_t row) const {
    return std::any_of(mCells.begin(), mCells.end(), [&](const MatrixCells* cells) {
        return (*cells)[row] != (*mCells.front())[row];
    });
}

uint32_t MatrixPart::numberOf(MatrixCells&& cells) {
    const auto [entry, isNew] =
            mByCells.try_emplace(std::move(cells), static_cast<uint32_t>(mCells.size()));
    if (isNew) {
        mCells.push_back(&entry->first);
    }
    return entry->second;
}

}  // namespace mlk::tree
