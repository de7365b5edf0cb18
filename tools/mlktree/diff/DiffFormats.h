#pragma once

#include "tools/common/TextSink.h"
#include "tools/mlktree/answers/Snapshot.h"
#include "tools/mlktree/diff/Change.h"

namespace mlk::tree {

/** The version of the form of differences in JSON. */
inline constexpr int kDiffVersion = 1;

/** For people: what was and what is, below each other. */
void writeDiffText(const Difference& difference, bool isColoured, const TextSink& sink);

/** For programs; docs/mlktree-diff.schema.json has the form. */
void writeDiffJson(const Difference& difference, const TextSink& sink);

/** For the comment of a review: a table for each kind. */
void writeDiffMarkdown(const Difference& difference, const TextSink& sink);

}  // namespace mlk::tree
