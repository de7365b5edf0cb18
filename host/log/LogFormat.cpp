#include "host/log/LogFormat.h"

#include <android/log.h>

#include <algorithm>

namespace mlk::host {

namespace {

char letterOf(int priority) {
    static constexpr std::string_view kLetters = "VDIWEFS";
    if (priority < ANDROID_LOG_VERBOSE || priority > ANDROID_LOG_SILENT) {
        return '?';
    }
    return kLetters[static_cast<size_t>(priority - ANDROID_LOG_VERBOSE)];
}

std::string prefixOf(int priority, std::string_view tag, pid_t pid) {
    static constexpr size_t kTagColumns = 8;
    static constexpr size_t kProcessColumns = 5;
    const std::string process = std::to_string(pid);
    std::string prefix{letterOf(priority), '/'};
    prefix.append(tag);
    prefix.append(kTagColumns - std::min(kTagColumns, tag.size()), ' ');
    prefix += '(';
    prefix.append(kProcessColumns - std::min(kProcessColumns, process.size()), ' ');
    return prefix.append(process).append("): ");
}

}  // namespace

std::string formatBrief(int priority, std::string_view tag, pid_t pid, std::string_view message) {
    const std::string prefix = prefixOf(priority, tag, pid);
    if (!message.empty() && message.back() == '\n') {
        message.remove_suffix(1);
    }
    std::string result;
    for (;;) {
        const size_t end = std::min(message.find('\n'), message.size());
        result.append(prefix).append(message.substr(0, end)).append(1, '\n');
        if (end == message.size()) {
            return result;
        }
        message.remove_prefix(end + 1);
    }
}

}  // namespace mlk::host
