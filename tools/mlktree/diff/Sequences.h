#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace mlk::tree {

/** An entry of two lists: its positions, from 0; nothing on a side that lacks it. */
struct SequencePair {
    std::optional<size_t> a;
    std::optional<size_t> b;
    bool isMoved = false; /**< both have it, in another place and order than the others */
};

/**
 * Matches two lists: equal beginnings and ends with each other, then equal entries from the first
 * one on, each once. As few as possible are moved, and none that has the same position in both
 * lists; exchanging the lists moves the same ones.
 * In the order of the first list; what it lacks comes last.
 */
std::vector<SequencePair> matchSequences(const std::vector<std::string>& a,
                                         const std::vector<std::string>& b);

}  // namespace mlk::tree
