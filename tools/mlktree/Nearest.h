#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace mlk::tree {

/**
 * How many typing mistakes turn one word into the other: letters that are left out, added, wrong or
 * exchanged with their neighbour. The case of letters makes no difference, and neither does a blank
 * or "-" instead of "_".
 *
 * @param most  as of editDistance()
 */
size_t distanceOf(std::string_view one, std::string_view other,
                  size_t most = std::numeric_limits<size_t>::max() - 1);

/**
 * The candidate that somebody who typed `word` probably meant: the one at the smallest distance; of
 * several, the one with the most letters in the right case, then the first.
 *
 * @return empty if no candidate is near: one mistake may be in a word of up to five letters, two in
 *         a word of up to nine, three in a longer one, and one letter at least must be right
 */
std::string_view nearest(std::string_view word, const std::vector<std::string_view>& candidates);

/** True if the candidate is near the word; see nearest(). */
bool isMeant(std::string_view word, std::string_view candidate);

/** ` (is "NAME" meant?)`, or an empty text if the name is empty: for the end of a message. */
std::string meant(std::string_view name);

}  // namespace mlk::tree
