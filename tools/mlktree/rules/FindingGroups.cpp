#include "tools/mlktree/rules/FindingGroups.h"

#include <utility>

namespace mlk::tree {

void FindingGroups::add(const std::string& group, Place place, std::string message,
                        std::vector<Related> related) {
    constexpr size_t kMostRelated = 3;
    const std::string name = place.file + '\n' + group;
    const auto position = mPositions.find(name);
    if (position != mPositions.end()) {
        Group& first = mGroups[position->second];
        if (first.last.line != place.line || first.last.column != place.column) {
            first.last = place;
            if (++first.more <= kMostRelated) {
                first.related.push_back({std::move(place), "here, too"});
            }
        }
        return;
    }
    if (isFull(place.file)) {
        return;
    }
    if (++mCounts[place.file] == kMostOfFile) {
        message += "; there may be more such findings in this file";
    }
    mPositions.emplace(name, mGroups.size());
    mGroups.push_back({place, std::move(message), std::move(related), 0, place});
}

bool FindingGroups::isFull(const std::string& file) const {
    const auto count = mCounts.find(file);
    return count != mCounts.end() && count->second >= kMostOfFile;
}

void FindingGroups::report(Reporter& reporter) {
    for (Group& group : mGroups) {
        if (group.more > 0) {
            group.message += " (and " + std::to_string(group.more) + " more like it in this file)";
        }
        reporter.report(std::move(group.place), std::move(group.message), std::move(group.related));
    }
    mGroups.clear();
    mPositions.clear();
    mCounts.clear();
}

}  // namespace mlk::tree
