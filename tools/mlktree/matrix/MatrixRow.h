#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tools/mlktree/answers/LineAnswers.h"

namespace mlk::tree {

/** What a row of a matrix is about. */
enum class RowKind { ITEM, FEATURE, FRAMEWORK, PLAN };
inline constexpr size_t kRowKinds = 4;

/** "item", "feature", "framework", "plan". */
std::string_view nameOf(RowKind kind);

/** Something that sets answer. */
struct MatrixRow {
    RowKind kind = RowKind::ITEM;
    std::string_view section; /**< of an item, with its brackets */
    std::string_view key;     /**< of an item; the method; the kind of a plan: "DTV_CABLE HRC" */

    /** "[PANEL] m_pPanelName", "feature pvrEnabled", "plan DTV_CABLE HRC". */
    std::string name() const;
};

/**
 * Whether a row fits a pattern: its name fits with "*" and "?" as wildcards; or the pattern is its
 * section, with or without brackets, its key or its method, or its kind, except "item".
 */
bool isChosen(const MatrixRow& row, const std::string& pattern);

/** All that the sets of a line can answer: items, features, framework switches, plans. */
std::vector<MatrixRow> rowsOf(const LineAnswers& line);

}  // namespace mlk::tree
