#pragma once

#include <string>
#include <vector>

#include "tools/mlktree/completion/Complete.h"
#include "tools/mlktree/matrix/MatrixRow.h"

namespace mlk::tree {

/**
 * What a shell may offer for a pattern of rows: the kinds "feature", "framework" and "plan", and
 * the sections; keys and getters once the word is begun; whole names, which have blanks, once it
 * can be nothing else.
 *
 * @param word  as far as it is typed
 */
std::vector<Candidate> matrixWords(const std::vector<MatrixRow>& rows, const std::string& word);

}  // namespace mlk::tree
