#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/mlktree/answers/LineAnswers.h"
#include "tools/mlktree/matrix/MatrixPart.h"
#include "tools/mlktree/matrix/MatrixRow.h"
#include "tools/mlktree/matrix/SetGroups.h"

namespace mlk::tree {

/** Which rows a matrix has. */
struct MatrixChoice {
    /** Patterns of names; empty for all. See isChosen(). */
    std::vector<std::string> patterns;
    bool hasAll = false; /**< also rows that are the same in all sets */
};

/** What a set answers in a row; nothing if it has no such item. */
using MatrixCell = std::optional<std::string_view>;

/** A value that some sets have. */
struct MatrixValue {
    MatrixCell value;
    std::vector<SetTerm> sets;
};

/**
 * What the sets of a line answer, row by row.
 *
 * Sets that share pieces share their cells, and rows are compared by numbers: time and space grow
 * with the different combinations of a model, a board and the items of a country, not with the
 * sets. One thread at a time.
 */
class Matrix {
  public:
    /** @param line  must outlive the object */
    Matrix(const LineAnswers& line, const MatrixChoice& choice);

    const std::vector<MatrixRow>& rows() const { return mShown; }
    /** How many rows were chosen, but are the same in all sets. */
    size_t sameRows() const { return mSameRows; }
    size_t setCount() const { return mKeys.size(); }

    /**
     * Groups of sets that are the same in every row, in the order of their first sets: positions in
     * LineAnswers::sets, ascending.
     */
    const std::vector<std::vector<uint32_t>>& columns() const { return mColumns; }

    /** What all sets of a column answer in a row. */
    MatrixCell cell(size_t row, size_t column) const;

    /** Who the sets of a column are. */
    std::vector<SetTerm> setsOf(size_t column) const { return mGroups.termsOf(mColumns[column]); }
    const SetGroups& groups() const { return mGroups; }

    /** The values of a row with their sets, in the order of their first sets. */
    std::vector<MatrixValue> valuesOf(size_t row) const;

  private:
    /** Sets of a model and a board with the same cells of one kind of row. */
    struct Unit {
        uint32_t model;
        uint32_t board;
        uint32_t part;
        uint32_t list; /**< of countries, a number of SetGroups */
    };
    using Key = std::array<uint32_t, kRowKinds>;

    void choose(const MatrixChoice& choice);
    void readSets();
    void findUnits(size_t kind);
    void findColumns();
    std::vector<std::string_view> planTexts();

    MatrixPart& partOf(RowKind kind) { return mParts[static_cast<size_t>(kind)]; }
    const MatrixPart& part(RowKind kind) const { return mParts[static_cast<size_t>(kind)]; }
    const std::vector<Unit>& units(RowKind kind) const { return mUnits[static_cast<size_t>(kind)]; }

    const LineAnswers& mLine;
    mutable SetGroups mGroups;
    MatrixValues mValues;
    std::deque<std::string> mTexts;
    std::array<MatrixPart, kRowKinds> mParts;
    std::array<std::vector<Unit>, kRowKinds> mUnits;
    std::vector<Key> mKeys;  // of each set: numbers of its parts
    std::vector<MatrixRow> mShown;
    std::vector<size_t> mPlaces;  // of the shown rows in their parts
    size_t mSameRows = 0;
    std::vector<std::vector<uint32_t>> mColumns;
};

}  // namespace mlk::tree
