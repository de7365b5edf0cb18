// How Told writes names and values, for all that tell.
#pragma once

#include <sstream>
#include <string>
#include <string_view>

#include "tools/mlktree/tests/ToldAnswers.h"

namespace mlk::tree {

/** "[PANEL] m_pPanelName". */
inline std::string nameOf(std::string_view section, std::string_view key) {
    return std::string(section) + (section.empty() ? "" : " ") + std::string(key);
}

/** Adds a value, unless it is what a service answers for everything that it does not know. */
inline void add(Told& told, const std::string& name, const std::string& value,
                const std::string& nothing = "") {
    if (value != nothing) {
        told[name] = value;
    }
}

/** The line of a channel in a plan. */
inline std::string textOf(int32_t channel, int32_t frequency, int32_t bandwidth,
                          const std::string& label, int32_t modulation) {
    std::ostringstream text;
    text << channel << ' ' << frequency << ' ' << bandwidth << ' ' << label << ' ' << modulation
         << '\n';
    return text.str();
}

}  // namespace mlk::tree
