#pragma once

#include <string>

#include "tools/mlktree/plan/PlanView.h"

namespace mlk::tree {

/** A plan as a table: a line for each channel, with what is remarkable of it. */
std::string planTable(const PlanView& plan);

/** A plan as one JSON object and a newline. */
std::string planJson(const PlanView& plan);

}  // namespace mlk::tree
