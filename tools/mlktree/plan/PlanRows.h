#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tools/mlktree/plan/PlanView.h"

namespace mlk::tree {

/** A channel in a row of a picture. */
struct PlacedChannel {
    size_t channel = 0; /**< position in PlanView::channels */
    size_t lane = 0;    /**< bars that overlap lie in different lanes */
};

/** A part of the spectrum: one row of a picture. */
struct PlanRow {
    int64_t low = 0;  /**< kHz */
    int64_t high = 0; /**< what the row can show; a channel may end above it */
    int64_t used = 0; /**< where its last channel ends, at most `high` */
    size_t lanes = 1;
    std::vector<PlacedChannel> channels; /**< from the lowest up */
};

/** Rows of equal span in which every channel stands once, and distances between marks of an axis.
 */
struct PlanRows {
    int64_t span = 0; /**< kHz that each row can show */
    std::vector<PlanRow> rows;
};

/**
 * Breaks a plan into rows, as lines of a text: a channel that does not fit the rest of a row begins
 * the next one.
 *
 * @param channelsInARow  how many channels of the usual bandwidth fit a row; more of them do if the
 *                        plan would take more than kMostPlanRows
 */
PlanRows rowsOf(const PlanView& plan, int64_t channelsInARow);

constexpr size_t kMostPlanRows = 40;
constexpr size_t kMostLanes = 6; /**< further bars share the last one */

/**
 * The distance between two marks of an axis: a round number.
 *
 * @param span   length of the axis, in kHz
 * @param marks  about how many marks it gets
 * @return kHz
 */
int64_t markDistance(int64_t span, int64_t marks);

}  // namespace mlk::tree
