#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tools/mlktree/matrix/MatrixRow.h"

namespace mlk::tree {

/** Numbers of texts, so that cells are compared as numbers; 0 is a cell that is not there. */
class MatrixValues {
  public:
    static constexpr uint32_t kNothing = 0;

    /** The number of a text, which must outlive the object. */
    uint32_t of(std::string_view text);

    /** The text of a number; nothing for kNothing. */
    std::optional<std::string_view> text(uint32_t number) const {
        return number == kNothing ? std::nullopt : std::optional(mTexts[number - 1]);
    }

  private:
    std::unordered_map<std::string_view, uint32_t> mNumbers;
    std::vector<std::string_view> mTexts;
};

/** The cells of a set in the rows of one kind: numbers of values. */
using MatrixCells = std::vector<uint32_t>;

/** The rows of one kind, and every list of cells that some set has in them. */
class MatrixPart {
  public:
    std::vector<MatrixRow> rows;

    /**
     * The number of the cells that a set with these pieces has. Sets with the same pieces share
     * cells, and so do those whose pieces say the same.
     *
     * @param make  makes the cells; called for each combination of pieces once
     */
    template <typename Make>
    uint32_t numberOf(const std::vector<uint32_t>& pieces, Make make) {
        const auto [entry, isNew] = mByPieces.try_emplace(pieces, 0);
        if (isNew) {
            entry->second = numberOf(make());
        }
        return entry->second;
    }

    uint32_t cell(uint32_t number, size_t row) const { return (*mCells[number])[row]; }

    /** Whether two lists differ in the row. */
    bool differs(size_t row) const;

  private:
    uint32_t numberOf(MatrixCells&& cells);

    std::map<std::vector<uint32_t>, uint32_t> mByPieces;
    std::map<MatrixCells, uint32_t> mByCells;
    std::vector<const MatrixCells*> mCells;
};

}  // namespace mlk::tree
