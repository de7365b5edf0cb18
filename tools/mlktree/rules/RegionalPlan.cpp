#include "tools/mlktree/rules/RegionalPlan.h"

#include <algorithm>
#include <cstdlib>

#include "common/Decimal.h"
#include "host/text/Utf8.h"
#include "regional/Modulations.h"
#include "regional/PlanColumns.h"
#include "tools/mlktree/Texts.h"

namespace mlk::tree {

namespace {

using vendor::morlak::mlkconfigs::V1_0::implementation::kModulations;
using vendor::morlak::mlkconfigs::V1_0::implementation::NamedValue;

const NamedValue* modulationOf(std::string_view name) {
    const auto* const row =
            std::find_if(kModulations.begin(), kModulations.end(),
                         [name](const NamedValue& modulation) { return modulation.name == name; });
    return row != kModulations.end() ? row : nullptr;
}

// Transmitters may lie a little beside their channel's place.
bool isAbout(int32_t distance, int32_t khz) {
    constexpr int32_t kToleranceKhz = 400;
    return std::abs(distance - khz) <= kToleranceKhz;
}

}  // namespace

std::string PlanChannel::name() const {
    return label.empty() ? std::to_string(item.channel) : std::string(label);
}

std::string_view PlanChannel::variant() const {
    const auto isLetter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
    const auto* const end = std::find_if_not(label.begin(), label.end(), isLetter);
    return label.substr(0, static_cast<size_t>(end - label.begin()));
}

bool PlanChannel::isAnalogue() const {
    return modulation == "ATV}";
}

int32_t PlanChannel::lowerEdge() const {
    constexpr int32_t kVisionCarrierKhz = 1250;
    return item.frequency - (isAnalogue() ? kVisionCarrierKhz : bandwidthInKhz() / 2);
}

PlanColumns::PlanColumns(std::string_view text) {
    while (mCount < kMost) {
        const std::string_view column =
                vendor::morlak::mlkconfigs::V1_0::implementation::nextColumn(text);
        if (column.empty()) {
            return;
        }
        mColumns[mCount++] = column;
    }
}

std::vector<PlanChannel> channelsOf(const FileLines& plan) {
    constexpr size_t kFourth = 3;
    constexpr size_t kFifth = 4;
    std::vector<PlanChannel> channels;
    channels.reserve(plan.channels().size());
    for (const ReadLine& read : plan.lines()) {
        if (read.use != LineUse::ITEM) {
            continue;
        }
        PlanChannel channel{
                &read, plan.channels()[channels.size()], PlanColumns(read.text), {}, {}};
        const std::string_view fourth = channel.columns[kFourth];
        (isModulation(fourth) ? channel.modulation : channel.label) = fourth;
        if (!channel.columns[kFifth].empty()) {
            channel.modulation = channel.columns[kFifth];
        }
        channels.push_back(channel);
    }
    return channels;
}

std::vector<const FileLines*> plansOf(const ProductLine& line) {
    std::vector<const FileLines*> plans;
    for (const auto& [path, file] : line.files()) {
        if (file->format() == FileFormat::CHANNEL_PLAN && isUsable(file.get())) {
            plans.push_back(file.get());
        }
    }
    return plans;
}

bool isModulation(std::string_view name) {
    return modulationOf(name) != nullptr;
}

bool isNumber(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

bool isNumberBetween(std::string_view text, int64_t least, int64_t most) {
    constexpr size_t kMostDigits = 9;  // more would not fit a frequency either
    if (!isNumber(text) || text.size() > kMostDigits) {
        return false;
    }
    const int64_t value = vendor::morlak::mlkconfigs::V1_0::implementation::parseDecimal(text);
    return value >= least && value <= most;
}

bool hasByteOrderMark(const ReadLine& read) {
    return beginsWith(read.text, kByteOrderMark);
}

bool isPlausible(const PlanChannel& channel) {
    // Satellite channels, which these plans are not made for, lie elsewhere.
    const bool isSatellite = channel.modulation.substr(0, 5) == "DVB_S";
    const HidlFreqListItem& item = channel.item;
    return isSatellite || (item.frequency >= kLowestKhz && item.frequency <= kHighestKhz &&
                           item.bandwidth >= kLeastHz && item.bandwidth <= kMostHz);
}

bool isOffRaster(const std::vector<PlanChannel>& channels, size_t at) {
    if (at == 0 || at + 1 >= channels.size()) {
        return false;
    }
    const PlanChannel& before = channels[at - 1];
    const PlanChannel& channel = channels[at];
    const PlanChannel& after = channels[at + 1];
    const bool isRow = before.variant() == channel.variant() &&
                       after.variant() == channel.variant() &&
                       before.item.bandwidth == after.item.bandwidth && isPlausible(before) &&
                       isPlausible(channel) && isPlausible(after);
    const int32_t width = before.bandwidthInKhz();
    if (!isRow || !isAbout(after.item.frequency - before.item.frequency, 2 * width)) {
        return false;
    }
    return channel.item.bandwidth != before.item.bandwidth ||
           !isAbout(channel.item.frequency - before.item.frequency, width);
}

}  // namespace mlk::tree
