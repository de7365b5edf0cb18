#include "host/log/LogFilter.h"

#include <android/log.h>

#include <algorithm>

namespace mlk::host {

namespace {

constexpr std::string_view kSeparators = " \t\n,";
constexpr int kUnknown = -1;

int priorityOf(std::string_view letter) {
    static constexpr std::string_view kLetters = "VDIWEFS";
    static constexpr std::string_view kSmallLetters = "vdiwefs";
    if (letter.size() != 1) {
        return kUnknown;
    }
    const size_t index = std::min(kLetters.find(letter), kSmallLetters.find(letter));
    return index == std::string_view::npos ? kUnknown
                                           : ANDROID_LOG_VERBOSE + static_cast<int>(index);
}

}  // namespace

LogFilter::LogFilter(std::string_view text, std::vector<std::string>* unknown)
    : mOthers(ANDROID_LOG_INFO) {
    size_t begin = text.find_first_not_of(kSeparators);
    while (begin != std::string_view::npos) {
        const size_t end = std::min(text.find_first_of(kSeparators, begin), text.size());
        const std::string_view rule = text.substr(begin, end - begin);
        if (!addRule(rule) && unknown != nullptr) {
            unknown->emplace_back(rule);
        }
        begin = text.find_first_not_of(kSeparators, end);
    }
}

bool LogFilter::addRule(std::string_view rule) {
    // The last colon: tags may contain colons ("package::Interface").
    const size_t colon = rule.rfind(':');
    const std::string_view tag = rule.substr(0, colon);
    int priority = tag == "*" ? ANDROID_LOG_DEBUG : ANDROID_LOG_VERBOSE;
    if (colon != std::string_view::npos) {
        priority = priorityOf(rule.substr(colon + 1));
    }
    if (tag.empty() || priority == kUnknown) {
        return false;
    }
    if (tag == "*") {
        mOthers = priority;
    } else {
        mTags[std::string(tag)] = priority;
    }
    return true;
}

bool LogFilter::shows(int priority, std::string_view tag) const {
    int least = mOthers;
    if (!mTags.empty()) {
        const auto rule = mTags.find(std::string(tag));
        least = rule == mTags.end() ? mOthers : rule->second;
    }
    return priority >= least && least != ANDROID_LOG_SILENT;
}

int LogFilter::lowest() const {
    int result = mOthers;
    for (const auto& [tag, priority] : mTags) {
        result = std::min(result, priority);
    }
    return result;
}

}  // namespace mlk::host
