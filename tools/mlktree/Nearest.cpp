#include "tools/mlktree/Nearest.h"

#include <algorithm>
#include <limits>

#include "tools/common/Suggest.h"

namespace mlk::tree {

namespace {

// People write blanks and "-" for "_".
std::string joined(std::string_view word) {
    std::string result(word);
    std::replace_if(
            result.begin(), result.end(), [](char c) { return c == ' ' || c == '-'; }, '_');
    return result;
}

size_t limitFor(size_t length) {
    if (length <= 5) {
        return length <= 1 ? 0 : 1;
    }
    return length <= 9 ? 2 : 3;
}

// Letters that differ in their case, for words that are equal otherwise.
size_t caseDistance(std::string_view one, std::string_view other) {
    size_t differences = 0;
    for (size_t i = 0; i < std::min(one.size(), other.size()); ++i) {
        differences += one[i] == other[i] ? 0U : 1U;
    }
    return differences;
}

}  // namespace

size_t distanceOf(std::string_view one, std::string_view other, size_t most) {
    return editDistance(joined(one), joined(other), most);
}

std::string_view nearest(std::string_view word, const std::vector<std::string_view>& candidates) {
    const size_t limit = limitFor(word.size());
    std::string_view best;
    size_t bestDistance = limit + 1;
    size_t bestCase = std::numeric_limits<size_t>::max();
    for (const std::string_view candidate : candidates) {
        const size_t longer = std::max(word.size(), candidate.size());
        if (candidate.empty() || longer - std::min(word.size(), candidate.size()) > limit) {
            continue;
        }
        const size_t distance = distanceOf(word, candidate, limit);
        const size_t inCase = caseDistance(word, candidate);
        if (distance < bestDistance || (distance == bestDistance && inCase < bestCase)) {
            best = candidate;
            bestDistance = distance;
            bestCase = inCase;
        }
    }
    return bestDistance <= limit ? best : std::string_view();
}

bool isMeant(std::string_view word, std::string_view candidate) {
    return !nearest(word, {candidate}).empty();
}

std::string meant(std::string_view name) {
    return name.empty() ? std::string() : " (is \"" + std::string(name) + "\" meant?)";
}

}  // namespace mlk::tree
