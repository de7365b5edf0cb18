#include "tools/mlktree/diff/Sequences.h"

#include <algorithm>
#include <map>

namespace mlk::tree {

namespace {

// Marks what is not part of a longest run of increasing positions in the second list.
void markMoved(std::vector<SequencePair>& pairs) {
    std::vector<size_t> ends;  // ends[n]: the pair that ends the best run of n + 1 pairs
    std::vector<size_t> before(pairs.size(), pairs.size());
    for (size_t i = 0; i < pairs.size(); ++i) {
        if (!pairs[i].a || !pairs[i].b) {
            continue;
        }
        const auto end = std::lower_bound(ends.begin(), ends.end(), i, [&](size_t x, size_t y) {
            return *pairs[x].b < *pairs[y].b;
        });
        if (end != ends.begin()) {
            before[i] = *(end - 1);
        }
        if (end == ends.end()) {
            ends.push_back(i);
        } else {
            *end = i;
        }
    }
    for (SequencePair& pair : pairs) {
        pair.isMoved = pair.a && pair.b;
    }
    for (size_t i = ends.empty() ? pairs.size() : ends.back(); i < pairs.size(); i = before[i]) {
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
    markMoved(pairs);
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
