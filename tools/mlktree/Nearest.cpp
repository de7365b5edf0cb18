#include "tools/mlktree/Nearest.h"

#include <algorithm>
#include <limits>

namespace mlk::tree {

namespace {

char folded(char c) {
    if (c >= 'a' && c <= 'z') {
        return static_cast<char>(c - 'a' + 'A');
    }
    return c == ' ' || c == '-' ? '_' : c;
}

bool isSame(char one, char other) {
    return folded(one) == folded(other);
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

size_t distanceOf(std::string_view one, std::string_view other) {
    // Rows of the usual table: row[j] is the distance of the letters so far to j letters of other.
    std::vector<size_t> beforeLast(other.size() + 1);
    std::vector<size_t> last(other.size() + 1);
    std::vector<size_t> row(other.size() + 1);
    for (size_t j = 0; j <= other.size(); ++j) {
        last[j] = j;
    }
    for (size_t i = 1; i <= one.size(); ++i) {
        row[0] = i;
        for (size_t j = 1; j <= other.size(); ++j) {
            const size_t wrong = isSame(one[i - 1], other[j - 1]) ? 0 : 1;
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + wrong});
            if (i > 1 && j > 1 && isSame(one[i - 1], other[j - 2]) &&
                isSame(one[i - 2], other[j - 1])) {
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
            }
        }
        beforeLast.swap(last);
        last.swap(row);
    }
    return last[other.size()];
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
        const size_t distance = distanceOf(word, candidate);
        const size_t inCase = caseDistance(word, candidate);
        if (distance < longer &&
            (distance < bestDistance || (distance == bestDistance && inCase < bestCase))) {
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
