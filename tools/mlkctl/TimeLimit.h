#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace mlk::ctl {

/// A time limit as a user writes it, in seconds: digits with at most one point among them, up to a
/// day. Nothing for any other text.
std::optional<double> secondsFrom(const std::string& text);

/// Adds --timeout SECONDS to a verb's options. It fills the text with what secondsFrom takes.
void addTimeout(CLI::App& app, std::string* seconds);

/// The text that addTimeout has filled.
std::chrono::duration<double> limitOf(const std::string& seconds);

/// How long a call may take unless --timeout says otherwise: the largest answer takes a few seconds
/// on a slow set.
inline constexpr const char* kDefaultTimeout = "30";

}  // namespace mlk::ctl
