#pragma once

#include <string>

#include "tools/mlktree/ProductLine.h"
#include "tools/mlktree/answers/LineAnswers.h"
#include "tools/mlktree/report/FileTable.h"
#include "tools/mlktree/report/TextTable.h"

namespace mlk::tree {

/**
 * What the sets of a line answer, as JSON: the pieces of LineAnswers, column by column, so that
 * sets and models that hardly differ compress to hardly anything. page/answers.js reads it.
 */
std::string answersJson(const ProductLine& line, const LineAnswers& answers, const FileTable& files,
                        TextTable& texts);

}  // namespace mlk::tree
