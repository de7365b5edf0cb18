#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mlk::ctl {

/// How many letters have to be changed, added, left out or swapped with their neighbour to make one
/// word of the other. Capitals count as their small letters.
size_t editDistance(std::string_view one, std::string_view other);

/// The candidate that was probably meant by a word that is none of them: the nearest, when it is
/// near for its length; empty when none is. Of equally near ones the first.
std::string_view suggestion(std::string_view word, const std::vector<std::string_view>& candidates);

/// "; did you mean X?", or `otherwise` when there is nothing near.
std::string didYouMean(std::string_view word, const std::vector<std::string_view>& candidates,
                       const std::string& otherwise);

}  // namespace mlk::ctl
