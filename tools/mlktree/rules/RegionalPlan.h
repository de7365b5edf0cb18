#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "tools/mlktree/ProductLine.h"

namespace mlk::tree {

/** The first columns of a line of a plan. */
class PlanColumns {
  public:
    explicit PlanColumns(std::string_view text);

    /** How many there are; kMost for a line that has more. */
    size_t size() const { return mCount; }
    /** A column; empty if the line has fewer. */
    std::string_view operator[](size_t column) const { return mColumns[column]; }

    static constexpr size_t kUsed = 5; /**< what the service uses */
    static constexpr size_t kMost = kUsed + 1;

  private:
    std::array<std::string_view, kMost> mColumns;
    size_t mCount = 0;
};

/** A channel of a plan, with what its line says. */
struct PlanChannel {
    const ReadLine* read;
    HidlFreqListItem item;
    PlanColumns columns;
    std::string_view label;      /**< as written; empty without one */
    std::string_view modulation; /**< as written; empty without one */

    /** The channel as people call it: its label, else its number. */
    std::string name() const;

    /** The letters that the label begins with: plans of several variants so tell them apart. */
    std::string_view variant() const;

    bool isAnalogue() const;

    /** The lower edge in kHz: analogue plans have the vision carrier, 1.25 MHz above it. */
    int32_t lowerEdge() const;
    int32_t bandwidthInKhz() const { return item.bandwidth / 1000; }
};

/** The channels of a plan, in their order. */
std::vector<PlanChannel> channelsOf(const FileLines& plan);

/** The plans of a line that were read whole. */
std::vector<const FileLines*> plansOf(const ProductLine& line);

/** True if the value of that name is in the service's table of modulations. */
bool isModulation(std::string_view name);

/** True if the text has digits and nothing else. */
bool isNumber(std::string_view text);

/** True if the text is a number of this range. */
bool isNumberBetween(std::string_view text, int64_t least, int64_t most);

/**
 * True if a byte order mark begins the line: what it does to the line is not reported as a mistake
 * of the line.
 */
bool hasByteOrderMark(const ReadLine& read);

// What television over the air and by cable can have.
constexpr int64_t kLowestKhz = 40000;
constexpr int64_t kHighestKhz = 1300000;
constexpr int64_t kLeastHz = 1500000;
constexpr int64_t kMostHz = 10000000;

/** True for a frequency and a bandwidth that television can have. */
bool isPlausible(const PlanChannel& channel);

/**
 * True if each of the channels before and after lies as far from the other as two channels do, but
 * this one does not lie between them: its frequency or its bandwidth is mistyped.
 *
 * @param at  position in `channels`
 */
bool isOffRaster(const std::vector<PlanChannel>& channels, size_t at);

}  // namespace mlk::tree
