#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

namespace mlk::host {

/**
 * Formats a message in logcat's brief form, "D/MlkProjectConfigs( 1234): text\n": the letter of
 * `priority` (an android_LogPriority; "?" for any other number), the tag in at least eight columns
 * and the process in at least five. Each line of the message gets the prefix; a newline at the end
 * begins no line.
 */
std::string formatBrief(int priority, std::string_view tag, pid_t pid, std::string_view message);

/**
 * Escapes what a terminal would take for a command: control characters except newline and tab
 * become \u001b (C1 controls and DEL included), bytes that are not UTF-8 become \x9b.
 */
std::string escapeControls(std::string_view text);

}  // namespace mlk::host
