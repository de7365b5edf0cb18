#pragma once

#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace mlk {

/**
 * The number of letters that have to be changed, added, removed or swapped with a neighbour to turn
 * one word into the other. Case does not count.
 *
 * @param most  the largest number of interest: a larger one may be given as most + 1, and is found
 *              sooner
 */
size_t editDistance(std::string_view one, std::string_view other,
                    size_t most = std::numeric_limits<size_t>::max() - 1);

/**
 * The candidate that the user probably meant. That is the first one that differs only in case; else
 * the first one of several words whose initials these are ("UK" of "UNITED_KINGDOM"); else the
 * nearest one by edit distance if it is near enough for its length, the first of equally near ones.
 * Otherwise empty.
 */
std::string_view suggestion(std::string_view word, const std::vector<std::string_view>& candidates);

/** "; did you mean X?", or `otherwise` if no candidate is near. */
std::string didYouMean(std::string_view word, const std::vector<std::string_view>& candidates,
                       const std::string& otherwise);

}  // namespace mlk
