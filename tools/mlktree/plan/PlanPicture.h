#pragma once

#include <string>
#include <string_view>

#include "tools/common/TextSink.h"
#include "tools/mlktree/plan/PlanView.h"

namespace mlk::tree {

/**
 * Draws a plan as a spectrum in SVG: each channel a bar at its frequency, as wide as its bandwidth,
 * with its label and modulation; gaps and overlaps hatched, repetitions outlined. The axis in MHz
 * goes on in further rows as lines of a text do, so that a plan fits a page and its labels can be
 * read.
 *
 * Texts of the plan are never markup. The picture has a title and a description for a screen
 * reader, a tooltip for each bar, and colours for light and dark backgrounds.
 *
 * @param sink  gets the pieces in order
 */
void drawPlan(const PlanView& plan, const TextSink& sink);

}  // namespace mlk::tree
