#include "tools/mlktree/rules/NameUses.h"

#include <algorithm>

#include "tools/mlktree/rules/Meaning.h"

namespace mlk::tree {

namespace {

// Little work, also for a hostile section. In a large line, a name that one file has is no model
// for others.
constexpr size_t kMostCandidates = 500;

// More names that stand out than any line that somebody wrote has.
constexpr size_t kMostSearches = 2'000;

}  // namespace

void NameUses::sort(bool isSmall) {
    for (const auto& [name, count] : mCounts) {
        if (count > 1 || isSmall) {
            mMostUsed.push_back(name);
        }
    }
    std::sort(mMostUsed.begin(), mMostUsed.end(),
              [&](std::string_view one, std::string_view other) {
                  const size_t count = mCounts.at(one);
                  const size_t otherCount = mCounts.at(other);
                  return count != otherCount ? count > otherCount : one < other;
              });
    mMostUsed.resize(std::min(mMostUsed.size(), kMostCandidates));
}

size_t NameUses::countOf(std::string_view name) const {
    const auto found = mCounts.find(name);
    return found != mCounts.end() ? found->second : 0;
}

std::string_view NameUses::commonNameFor(std::string_view name, size_t& searches) const {
    return nearestOf(countOf(name) + 1, name, searches);
}

std::string_view NameUses::rivalNameFor(std::string_view name, size_t& searches) const {
    return nearestOf(countOf(name), name, searches);
}

std::string_view NameUses::nearestOf(size_t least, std::string_view name, size_t& searches) const {
    std::vector<std::string_view> candidates;
    for (const std::string_view candidate : mMostUsed) {
        if (mCounts.at(candidate) < least) {
            break;
        }
        if (candidate != name) {
            candidates.push_back(candidate);
        }
    }
    const bool isSearched = !candidates.empty() && ++searches <= kMostSearches;
    return isSearched ? nearestName(name, candidates) : std::string_view();
}

}  // namespace mlk::tree
