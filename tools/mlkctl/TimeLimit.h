#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace mlk::ctl {

/**
 * Parses a time limit in seconds: digits with at most one point, up to a day. Returns nothing for
 * any other text.
 */
std::optional<double> secondsFrom(const std::string& text);

/** Adds --timeout SECONDS to a verb's options. It accepts what secondsFrom accepts. */
void addTimeout(CLI::App& app, std::string* seconds);

/** The time limit in the text that addTimeout has filled. */
std::chrono::duration<double> limitOf(const std::string& seconds);

/**
 * The time limit of a call without --timeout. The largest answer takes a few seconds on a slow set.
 */
inline constexpr const char* kDefaultTimeout = "30";

}  // namespace mlk::ctl
