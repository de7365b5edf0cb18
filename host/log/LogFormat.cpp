#include "host/log/LogFormat.h"

#include <android/log.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "host/text/Utf8.h"

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

void appendHex(std::string& out, std::string_view prefix, char byte) {
    static constexpr std::string_view kDigits = "0123456789abcdef";
    const auto value = static_cast<uint8_t>(byte);
    out.append(prefix).append(1, kDigits[value >> 4U]).append(1, kDigits[value & 0xfU]);
}

}  // namespace

std::string escapeControls(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const size_t length = utf8At(text, 0).size;
        const auto lead = static_cast<uint8_t>(text[0]);
        const bool isC0 = lead < 0x20 && lead != '\n' && lead != '\t';
        const bool isC1 = length == 2 && lead == 0xc2 && static_cast<uint8_t>(text[1]) < 0xa0;
        if (length == 0) {
            appendHex(out, "\\x", text[0]);
        } else if (isC0 || lead == 0x7f || isC1) {
            appendHex(out, "\\u00", text[length - 1]);
        } else {
            out.append(text.substr(0, length));
        }
        text.remove_prefix(std::max<size_t>(length, 1));
    }
    return out;
}

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
