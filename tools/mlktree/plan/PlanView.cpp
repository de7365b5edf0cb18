#include "tools/mlktree/plan/PlanView.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <numeric>
#include <tuple>

#include "regional/Modulations.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/RegionalPlan.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

constexpr int64_t kVisionCarrierKhz = 1250;  // above the lower edge of an analogue channel
constexpr int64_t kTolerance = 20;           // a twentieth of a channel

bool isAnalogue(int32_t modulation) {
    return modulationName(modulation) == "ATV}";
}

std::string_view variantOf(std::string_view label) {
    const auto isLetter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
    const auto* const end = std::find_if_not(label.begin(), label.end(), isLetter);
    return label.substr(0, static_cast<size_t>(end - label.begin()));
}

ViewedChannel channelOf(const HidlFreqListItem& item) {
    const char* const label = reinterpret_cast<const char*>(item.label.data());
    ViewedChannel channel{item.channel, item.frequency, item.bandwidth,
                          std::string(label, strnlen(label, item.label.size())), item.modulation};
    const int64_t width = std::max<int64_t>(item.bandwidth, 0) / 1000;
    channel.low =
            int64_t{item.frequency} - (isAnalogue(item.modulation) ? kVisionCarrierKhz : width / 2);
    channel.high = channel.low + width;
    return channel;
}

void findRepeated(PlanView& plan) {
    std::map<std::tuple<int32_t, int32_t, int32_t>, size_t> frequencies;
    std::map<std::string_view, size_t> labels;
    for (size_t i = 0; i < plan.channels.size(); ++i) {
        ViewedChannel& channel = plan.channels[i];
        const auto frequency = frequencies.try_emplace(
                {channel.frequency, channel.bandwidth, channel.modulation}, i);
        const auto label = labels.try_emplace(channel.label, i);
        if (!frequency.second) {
            channel.sameFrequencyAs = frequency.first->second;
        }
        if (!label.second && !channel.label.empty()) {
            channel.sameNameAs = label.first->second;
        }
    }
}

// Looks at the channels from the lowest up, each beside the one that reaches furthest so far.
void findGaps(PlanView& plan) {
    std::optional<size_t> furthest;
    for (const size_t i : plan.byFrequency) {
        const ViewedChannel& channel = plan.channels[i];
        if (furthest) {
            const ViewedChannel& before = plan.channels[*furthest];
            if (channel.low - before.high > (before.high - before.low) / kTolerance) {
                plan.gaps.push_back({*furthest, i, before.high, channel.low});
            }
        }
        if (!furthest || channel.high > plan.channels[*furthest].high) {
            furthest = i;
        }
    }
}

void findOverlaps(PlanView& plan) {
    std::map<std::string_view, size_t> furthest;  // by variant
    for (const size_t i : plan.byFrequency) {
        const ViewedChannel& channel = plan.channels[i];
        const auto [entry, isFirst] = furthest.try_emplace(variantOf(channel.label), i);
        const ViewedChannel& before = plan.channels[entry->second];
        if (isFirst) {
            continue;
        }
        const Meeting meeting{entry->second, i, channel.low, std::min(before.high, channel.high)};
        // Two channels of one frequency are a repetition.
        if (meeting.width() > (before.high - before.low) / kTolerance &&
            before.frequency != channel.frequency) {
            plan.overlaps.push_back(meeting);
        }
        if (channel.high > before.high) {
            entry->second = i;
        }
    }
}

}  // namespace

std::string ViewedChannel::name() const {
    return label.empty() ? std::to_string(number) : label;
}

size_t PlanView::repeated() const {
    return static_cast<size_t>(
            std::count_if(channels.begin(), channels.end(), [](const ViewedChannel& channel) {
                return channel.sameFrequencyAs.has_value() || channel.sameNameAs.has_value();
            }));
}

PlanView viewOf(const CountryPlan& plan, const std::string& country, const FileLines* read) {
    PlanView view;
    view.country = country;
    view.name = nameOf(plan);
    view.file = plan.file;
    if (plan.map != nullptr) {
        view.map = plan.map->path();
        view.mapLine = plan.line != nullptr ? plan.line->number : 0;
    }
    for (const HidlFreqListItem& item : plan.channels) {
        view.channels.push_back(channelOf(item));
    }
    const std::vector<PlanChannel> lines =
            read != nullptr && read->format() == FileFormat::CHANNEL_PLAN
                    ? channelsOf(*read)
                    : std::vector<PlanChannel>();
    if (lines.size() == view.channels.size()) {
        for (size_t i = 0; i < lines.size(); ++i) {
            view.channels[i].line = lines[i].read->number;
        }
    }
    view.byFrequency.resize(view.channels.size());
    std::iota(view.byFrequency.begin(), view.byFrequency.end(), size_t{0});
    std::stable_sort(view.byFrequency.begin(), view.byFrequency.end(), [&view](size_t a, size_t b) {
        return std::tie(view.channels[a].low, view.channels[a].high) <
               std::tie(view.channels[b].low, view.channels[b].high);
    });
    findRepeated(view);
    findGaps(view);
    findOverlaps(view);
    return view;
}

std::string_view modulationName(int32_t modulation) {
    for (const product::NamedValue& row : product::kModulations) {
        if (row.value == modulation) {
            return row.name;
        }
    }
    return {};
}

std::string modulationText(int32_t modulation) {
    const std::string_view name = modulationName(modulation);
    return name.empty() ? std::to_string(modulation) : std::string(name);
}

std::string megahertz(int64_t kilohertz) {
    const int64_t size = std::abs(kilohertz);
    std::string text = (kilohertz < 0 ? "-" : "") + std::to_string(size / 1000);
    if (size % 1000 != 0) {
        std::string rest = std::to_string(1000 + size % 1000).substr(1);
        rest.erase(rest.find_last_not_of('0') + 1);
        text += '.' + rest;
    }
    return text;
}

std::string summaryOf(const PlanView& plan) {
    const auto some = [](size_t count, const char* singular, const char* plural) {
        return count == 0 ? "no " + std::string(plural) : counted(count, singular, plural);
    };
    return some(plan.gaps.size(), "gap", "gaps") + ", " +
           some(plan.overlaps.size(), "overlap", "overlaps") + ", " +
           some(plan.repeated(), "channel", "channels") + " repeated";
}

std::string repeatedOf(const PlanView& plan, size_t channel) {
    const ViewedChannel& it = plan.channels[channel];
    if (it.sameFrequencyAs) {
        return "the frequency of " + plan.channels[*it.sameFrequencyAs].name();
    }
    return it.sameNameAs ? "the name " + it.name() : "";
}

}  // namespace mlk::tree
