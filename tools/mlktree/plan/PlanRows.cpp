#include "tools/mlktree/plan/PlanRows.h"

#include <algorithm>

namespace mlk::tree {

namespace {

// The bandwidth that is in the middle of all, in kHz, if television can have it.
int64_t usualWidth(const PlanView& plan) {
    constexpr int64_t kLeast = 1000;
    constexpr int64_t kMost = 20000;
    std::vector<int64_t> widths;
    for (const ViewedChannel& channel : plan.channels) {
        widths.push_back(channel.high - channel.low);
    }
    if (widths.empty()) {
        return kMost;
    }
    const auto middle = widths.begin() + static_cast<ptrdiff_t>(widths.size() / 2);
    std::nth_element(widths.begin(), middle, widths.end());
    return std::clamp(*middle, kLeast, kMost);
}

// The lane whose last bar ends before this one begins, but for a twentieth of it.
size_t laneFor(std::vector<int64_t>& ends, const ViewedChannel& channel) {
    constexpr int64_t kTolerance = 20;
    const int64_t begin = channel.low + (channel.high - channel.low) / kTolerance;
    size_t lane = 0;
    while (lane < ends.size() && ends[lane] > begin && lane + 1 < kMostLanes) {
        ++lane;
    }
    ends.resize(std::max(ends.size(), lane + 1), channel.low);
    ends[lane] = std::max(ends[lane], channel.high);
    return lane;
}

std::vector<PlanRow> broken(const PlanView& plan, int64_t span, int64_t mark) {
    std::vector<PlanRow> rows;
    std::vector<int64_t> ends;
    for (const size_t i : plan.byFrequency) {
        const ViewedChannel& channel = plan.channels[i];
        if (rows.empty() || channel.high > rows.back().high) {
            if (rows.size() == kMostPlanRows) {
                return {};
            }
            // The axis begins at a mark.
            const int64_t before = channel.low % mark;
            PlanRow& row = rows.emplace_back();
            row.low = channel.low - (before < 0 ? before + mark : before);
            row.high = row.low + span;
            ends.clear();
        }
        PlanRow& row = rows.back();
        row.channels.push_back({i, laneFor(ends, channel)});
        row.lanes = std::max(row.lanes, ends.size());
        row.used = std::min(row.high, std::max(row.used, channel.high));
    }
    return rows;
}

}  // namespace

int64_t markDistance(int64_t span, int64_t marks) {
    const int64_t least = std::max<int64_t>(span / marks, 1);
    int64_t power = 1;
    while (power * 10 <= least) {
        power *= 10;
    }
    for (const int64_t factor : {1, 2, 5}) {
        if (power * factor >= least) {
            return power * factor;
        }
    }
    return power * 10;
}

PlanRows rowsOf(const PlanView& plan, int64_t channelsInARow) {
    constexpr int64_t kMarks = 10;
    PlanRows made;
    made.span = usualWidth(plan) * channelsInARow;
    if (plan.channels.empty()) {
        return made;
    }
    while ((made.rows = broken(plan, made.span, markDistance(made.span, kMarks))).empty()) {
        made.span *= 2;
    }
    return made;
}

}  // namespace mlk::tree
