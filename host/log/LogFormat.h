#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

namespace mlk::host {

/// A message in logcat's brief form, "D/MlkProjectConfigs( 1234): text\n": the letter of `priority`
/// (an android_LogPriority; "?" for any other number), the tag in at least eight columns and the
/// process in at least five. Each line of the message gets the prefix; a newline at its end begins
/// no line.
std::string formatBrief(int priority, std::string_view tag, pid_t pid, std::string_view message);

/// A text for a terminal. What would be a command to it is escaped: control characters but newline
/// and tab are \u001b (C1 controls and DEL among them), bytes that are not UTF-8 are \x9b.
std::string escapeControls(std::string_view text);

}  // namespace mlk::host
