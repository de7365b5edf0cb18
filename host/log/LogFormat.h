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

}  // namespace mlk::host
