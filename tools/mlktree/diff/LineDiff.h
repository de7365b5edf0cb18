#pragma once

#include "tools/mlktree/answers/LineAnswers.h"
#include "tools/mlktree/diff/Change.h"

namespace mlk::tree {

/** What differs between two lines: sets of the same model, board, customer and country. */
Difference diffLines(const LineAnswers& a, const LineAnswers& b);

/** What differs between two sets, of one line or of two. Who they are is no difference. */
Difference diffSets(const LineAnswers& a, const AnswerSet& ofA, const LineAnswers& b,
                    const AnswerSet& ofB);

}  // namespace mlk::tree
