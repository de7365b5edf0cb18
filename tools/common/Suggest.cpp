#include "tools/common/Suggest.h"

#include <algorithm>

namespace mlk {

namespace {

char small(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool isSameButForCase(std::string_view one, std::string_view other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](char left, char right) { return small(left) == small(right); });
}

// The initials of the words that "_" separates; empty for a single word.
std::string initialsOf(std::string_view name) {
    std::string initials;
    bool atStart = true;
    for (const char letter : name) {
        if (atStart && letter != '_') {
            initials += letter;
        }
        atStart = letter == '_';
    }
    return initials.size() > 1 ? initials : std::string();
}

}  // namespace

size_t editDistance(std::string_view one, std::string_view other, size_t most) {
    const size_t longer = std::max(one.size(), other.size());
    if (longer - std::min(one.size(), other.size()) > most) {
        return most + 1;
    }
    // Rows of the table of distances between the prefixes of both words. Prefixes whose lengths
    // differ by more than the limit are too far apart, whatever their letters.
    const size_t limit = std::min(most, longer);
    std::vector<size_t> beforeLast(other.size() + 1, limit + 1);
    std::vector<size_t> last(beforeLast);
    std::vector<size_t> row(beforeLast);
    for (size_t j = 0; j <= std::min(limit, other.size()); ++j) {
        row[j] = j;
    }
    for (size_t i = 1; i <= one.size(); ++i) {
        beforeLast.swap(last);
        last.swap(row);
        const size_t begin = i > limit ? i - limit : 1;
        const size_t end = std::min(i + limit, other.size());
        row[begin - 1] = begin == 1 ? i : limit + 1;
        size_t least = row[begin - 1];
        for (size_t j = begin; j <= end; ++j) {
            const size_t change = small(one[i - 1]) == small(other[j - 1]) ? 0 : 1;
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + change});
            const bool swapped = i > 1 && j > 1 && small(one[i - 1]) == small(other[j - 2]) &&
                                 small(one[i - 2]) == small(other[j - 1]);
            if (swapped) {
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
            }
            least = std::min(least, row[j]);
        }
        // No row has less than the one before it, and a swap of letters is no shorter way.
        if (least > limit) {
            return limit + 1;
        }
    }
    return std::min(row[other.size()], limit + 1);
}

std::string_view suggestion(std::string_view word,
                            const std::vector<std::string_view>& candidates) {
    for (const std::string_view candidate : candidates) {
        if (!word.empty() && isSameButForCase(word, candidate)) {
            return candidate;
        }
    }
    for (const std::string_view candidate : candidates) {
        if (!word.empty() && isSameButForCase(word, initialsOf(candidate))) {
            return candidate;
        }
    }
    std::string_view nearest;
    size_t least = 0;
    for (const std::string_view candidate : candidates) {
        // Up to a third of the letters wrong is a misspelling, more is another word. The table of
        // distances is not computed for a much longer word.
        const size_t limit = candidate.size() / 3;
        if (word.size() > candidate.size() + limit) {
            continue;
        }
        const size_t distance = editDistance(word, candidate, limit);
        if (distance <= limit && (nearest.empty() || distance < least)) {
            nearest = candidate;
            least = distance;
        }
    }
    return nearest;
}

std::string didYouMean(std::string_view word, const std::vector<std::string_view>& candidates,
                       const std::string& otherwise) {
    const std::string_view meant = suggestion(word, candidates);
    return meant.empty() ? otherwise : "; did you mean " + std::string(meant) + "?";
}

}  // namespace mlk
