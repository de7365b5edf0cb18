#include "tools/mlktree/diff/Sequences.h"

#include <algorithm>
#include <limits>
#include <map>
#include <string_view>

namespace mlk::tree {

namespace {

constexpr size_t kNone = std::numeric_limits<size_t>::max();

// A run of pairs whose positions increase in both lists.
struct Run {
    size_t length = 0;
    size_t inPlace = 0;  /**< how many of its pairs have the same position in both lists */
    size_t next = kNone; /**< the pair after the first one; kNone after the last */
};
// Finds the best of the runs that begin with each pair. The pairs are added from the last one of
// the first list on.
class BestRuns {
  public:
    BestRuns(const std::vector<SequencePair>& pairs, const std::vector<std::string>& a,
             size_t sizeOfB)
        : mPairs(pairs), mA(a), mRuns(pairs.size()), mBest(sizeOfB + 1, kNone) {}

    void add(size_t pair) {
        const size_t b = *mPairs[pair].b;
        const size_t next = bestAfter(b + 1);
        Run& run = mRuns[pair];
        run = next != kNone ? mRuns[next] : Run();
        ++run.length;
        run.inPlace += *mPairs[pair].a == b ? 1 : 0;
        run.next = next;
        for (size_t i = b + 1; i > 0; i -= i & (~i + 1)) {
            mBest[i] = betterOf(mBest[i], pair);
        }
    }

    // The pair that the best run begins with; kNone without one.
    size_t first() const { return bestAfter(0); }
    size_t next(size_t pair) const { return mRuns[pair].next; }

  private:
    // Of the pairs so far whose position in the second list is at least this.
    size_t bestAfter(size_t b) const {
        size_t best = kNone;
        for (size_t i = b + 1; i < mBest.size(); i += i & (~i + 1)) {
            best = betterOf(best, mBest[i]);
        }
        return best;
    }

    // Exchanging the lists does not change which one is better: then the same entries are moved in
    // both directions.
    size_t betterOf(size_t x, size_t y) const {
        if (x == kNone || y == kNone) {
            return x == kNone ? y : x;
        }
        const Run& runX = mRuns[x];
        const Run& runY = mRuns[y];
        if (runX.length != runY.length) {
            return runX.length > runY.length ? x : y;
        }
        if (runX.inPlace != runY.inPlace) {
            return runX.inPlace > runY.inPlace ? x : y;
        }
        const size_t sumX = *mPairs[x].a + *mPairs[x].b;
        const size_t sumY = *mPairs[y].a + *mPairs[y].b;
        if (sumX != sumY) {
            return sumX < sumY ? x : y;
        }
        // Pairs of one text follow one another, so their sums differ.
        return mA[*mPairs[x].a] < mA[*mPairs[y].a] ? x : y;
    }

    const std::vector<SequencePair>& mPairs;
    const std::vector<std::string>& mA;
    std::vector<Run> mRuns;     // by pair
    std::vector<size_t> mBest;  // a binary indexed tree over the positions in the second list
};

// Marks what is not part of the best run and does not stay in place either.
void markMoved(std::vector<SequencePair>& pairs, const std::vector<std::string>& a,
               size_t sizeOfB) {
    BestRuns runs(pairs, a, sizeOfB);
    for (size_t i = pairs.size(); i-- > 0;) {
        if (pairs[i].a && pairs[i].b) {
            runs.add(i);
        }
    }
    for (SequencePair& pair : pairs) {
        pair.isMoved = pair.a && pair.b && *pair.a != *pair.b;
    }
    for (size_t i = runs.first(); i != kNone; i = runs.next(i)) {
        pairs[i].isMoved = false;
    }
}

}  // namespace

std::vector<SequencePair> matchSequences(const std::vector<std::string>& a,
                                         const std::vector<std::string>& b) {
    // An entry that is repeated is not moved where nothing changes around it.
    const size_t shorter = std::min(a.size(), b.size());
    size_t front = 0;
    while (front < shorter && a[front] == b[front]) {
        ++front;
    }
    size_t back = 0;
    while (back < shorter - front && a[a.size() - 1 - back] == b[b.size() - 1 - back]) {
        ++back;
    }
    std::map<std::string_view, std::vector<size_t>> places;  // in b, the last one first
    for (size_t i = b.size() - back; i-- > front;) {
        places[b[i]].push_back(i);
    }
    std::vector<SequencePair> pairs;
    for (size_t i = 0; i < a.size(); ++i) {
        SequencePair& pair = pairs.emplace_back();
        pair.a = i;
        if (i < front) {
            pair.b = i;
            continue;
        }
        if (i >= a.size() - back) {
            pair.b = i + b.size() - a.size();
            continue;
        }
        const auto found = places.find(a[i]);
        if (found != places.end() && !found->second.empty()) {
            pair.b = found->second.back();
            found->second.pop_back();
        }
    }
    markMoved(pairs, a, b.size());
    std::vector<size_t> added;
    for (const auto& [text, left] : places) {
        added.insert(added.end(), left.begin(), left.end());
    }
    std::sort(added.begin(), added.end());
    for (const size_t i : added) {
        pairs.push_back({std::nullopt, i, false});
    }
    return pairs;
}

}  // namespace mlk::tree
