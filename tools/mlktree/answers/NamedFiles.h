#pragma once

#include "tools/mlktree/Tree.h"
#include "tools/mlktree/answers/LineAnswers.h"

namespace mlk::tree {

/** The bytes of a file that count for its hash: the first of a larger one. */
inline constexpr size_t kMostHashed = size_t{64} << 20U;

/** Whether an item of that name names a file whose bytes the service delivers as they are. */
bool mayNameFile(const AnswerName& name);

/** A hash as a text: 16 hexadecimal digits. */
std::string hexOf(uint64_t hash);

/**
 * Every file that an item of the line names and whose bytes the service delivers as they are, by
 * path; on all cores. Reads nothing outside of the partitions, unless a link leads there.
 */
std::vector<AnswerFile> namedFiles(const LineAnswers& line, const Tree& tree);

}  // namespace mlk::tree
