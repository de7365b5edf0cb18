#include "tools/mlktree/Patterns.h"

#include <algorithm>
#include <vector>

namespace mlk::tree {

namespace {

std::vector<std::string_view> namesOf(std::string_view path) {
    std::vector<std::string_view> names;
    while (true) {
        const size_t end = path.find('/');
        names.push_back(path.substr(0, end));
        if (end == std::string_view::npos) {
            return names;
        }
        path.remove_prefix(end + 1);
    }
}

// Matches elements, of which those that isAny holds for stand for any number of others. A mistake
// goes back to the last of them only, so the time is bounded by the product of both lengths.
template <typename Pattern, typename Text, typename IsAny, typename Fits>
bool fitsAll(const Pattern& pattern, const Text& text, IsAny isAny, Fits fits) {
    size_t p = 0;
    size_t t = 0;
    size_t lastAny = pattern.size();
    size_t resume = 0;
    while (t < text.size()) {
        if (p < pattern.size() && isAny(pattern[p])) {
            lastAny = p++;
            resume = t;
        } else if (p < pattern.size() && fits(pattern[p], text[t])) {
            ++p;
            ++t;
        } else if (lastAny < pattern.size()) {
            p = lastAny + 1;
            t = ++resume;
        } else {
            return false;
        }
    }
    return std::all_of(pattern.begin() + static_cast<std::ptrdiff_t>(p), pattern.end(), isAny);
}

}  // namespace

bool fitsWildcards(std::string_view pattern, std::string_view text) {
    return fitsAll(
            pattern, text, [](char one) { return one == '*'; },
            [](char one, char other) { return one == '?' || one == other; });
}

bool fitsPath(std::string_view pattern, std::string_view path) {
    if (pattern.find('/') == std::string_view::npos && pattern != "**") {
        return fitsWildcards(pattern, path.substr(path.rfind('/') + 1));
    }
    return fitsAll(
            namesOf(pattern), namesOf(path), [](std::string_view name) { return name == "**"; },
            [](std::string_view one, std::string_view other) { return fitsWildcards(one, other); });
}

std::regex valuePattern(const std::string& text) {
    auto flags = std::regex::ECMAScript;
#ifdef __GLIBCXX__
    // The usual matcher recurses for each character and may take exponential time.
    flags |= std::regex_constants::__polynomial;
#endif
    return std::regex(text, flags);
}

}  // namespace mlk::tree
