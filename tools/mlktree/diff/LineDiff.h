#pragma once

#include "tools/mlktree/answers/LineAnswers.h"
#include "tools/mlktree/diff/Change.h"
#include "tools/mlktree/diff/SetFilter.h"

namespace mlk::tree {

/**
 * What differs between two lines: sets of the same model, board, customer and country.
 *
 * @param filter  the sets of both lines that are looked at
 */
Difference diffLines(const LineAnswers& a, const LineAnswers& b, const SetFilter& filter = {});

/** What differs between two sets, of one line or of two. Who they are is no difference. */
Difference diffSets(const LineAnswers& a, const AnswerSet& ofA, const LineAnswers& b,
                    const AnswerSet& ofB);

}  // namespace mlk::tree
