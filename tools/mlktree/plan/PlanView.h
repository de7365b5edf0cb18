#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/mlktree/set/SetCountry.h"

namespace mlk::tree {

/** A channel of a plan as the service answers it, and what it covers. */
struct ViewedChannel {
    int32_t number = 0;
    int32_t frequency = 0; /**< kHz */
    int32_t bandwidth = 0; /**< Hz */
    std::string label;
    int32_t modulation = 0;
    size_t line = 0; /**< of the plan's file; 0 if it is unknown */

    int64_t low = 0;  /**< its edges, in kHz */
    int64_t high = 0; /**< not below `low` */

    /** The channel before it that has the same frequency, bandwidth and modulation. */
    std::optional<size_t> sameFrequencyAs = {};
    /** The channel before it that has the same label. */
    std::optional<size_t> sameNameAs = {};

    /** As people call it: its label, else its number. */
    std::string name() const;
};

/** What lies between two channels: a gap, or what both cover. */
struct Meeting {
    size_t lower = 0; /**< the channel that begins first */
    size_t upper = 0;
    int64_t low = 0; /**< kHz */
    int64_t high = 0;

    int64_t width() const { return high - low; }
};

/** A channel plan of a country, and what is remarkable of it. */
struct PlanView {
    std::string country;
    std::string name;                    /**< "DTV_CABLE HRC" */
    std::string file;                    /**< relative to the tree */
    std::string map;                     /**< the map that names it; empty if it is unknown */
    size_t mapLine = 0;                  /**< its line there; 0 if it is unknown */
    std::vector<ViewedChannel> channels; /**< in the order of the plan */
    std::vector<size_t> byFrequency;     /**< the channels from the lowest edge up */
    std::vector<Meeting> gaps;           /**< from the lowest up */
    std::vector<Meeting> overlaps;       /**< from the lowest up */

    /** How many channels are there twice, by frequency or by name. */
    size_t repeated() const;
};

/**
 * Looks at a plan. What is less than a twentieth of a channel is neither a gap nor an overlap, and
 * channels of different variants, which the letters of their labels tell apart, may overlap: both
 * as in the rules of `check`.
 *
 * @param read  the file of the plan; its lines are unknown if this is null, or of another format
 */
PlanView viewOf(const CountryPlan& plan, const std::string& country, const FileLines* read);

/** The name of a modulation in channel plans; empty for a number without one. */
std::string_view modulationName(int32_t modulation);

/** The name, or the number if it has none. */
std::string modulationText(int32_t modulation);

/** A frequency or a width in MHz: "474", "0.25". */
std::string megahertz(int64_t kilohertz);

/** "1 gap, no overlaps, 2 channels repeated". */
std::string summaryOf(const PlanView& plan);

/** What a channel repeats: "the frequency of E21", "the name E21"; empty if it repeats nothing. */
std::string repeatedOf(const PlanView& plan, size_t channel);

}  // namespace mlk::tree
