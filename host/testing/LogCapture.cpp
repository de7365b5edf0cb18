#include "host/testing/LogCapture.h"

#include <android/log.h>

#include <algorithm>
#include <map>
#include <mutex>

#include "host/log/HostLog.h"

namespace mlk::testing {

namespace {

std::mutex gLock;
// The living captures and their lines. Never freed: a thread may log while the process ends.
auto& gCaptures = *new std::map<const LogCapture*, std::vector<LogLine>*>;

void capture(const __android_logger_data* data, const char* message) {
    const std::lock_guard<std::mutex> guard(gLock);
    for (const auto& [owner, lines] : gCaptures) {
        lines->push_back({data->priority, data->tag == nullptr ? "" : data->tag,
                          message == nullptr ? "" : message});
    }
}

}  // namespace

LogCapture::LogCapture() {
    {
        // Release the lock first: liblog calls the logger under a lock of its own.
        const std::lock_guard<std::mutex> guard(gLock);
        gCaptures.emplace(this, &mLines);
    }
    mFormerPriority = __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
    __android_log_set_logger(capture);
}

LogCapture::~LogCapture() {
    bool last = false;
    {
        const std::lock_guard<std::mutex> guard(gLock);
        gCaptures.erase(this);
        last = gCaptures.empty();
    }
    if (last) {
        // liblog does not reveal the previous logger; on a host it is this one.
        mlk_host_log_install();
    }
    __android_log_set_minimum_priority(mFormerPriority);
}

std::vector<LogLine> LogCapture::lines() const {
    const std::lock_guard<std::mutex> guard(gLock);
    return mLines;
}

std::vector<std::string> LogCapture::brief() const {
    constexpr std::string_view kLetters = "??VDIWEFS";
    std::vector<std::string> result;
    for (const LogLine& line : lines()) {
        const auto priority = static_cast<size_t>(line.priority);
        result.push_back(std::string(1, kLetters.at(priority)) + '/' + line.text);
    }
    return result;
}

std::vector<std::string> LogCapture::texts() const {
    std::vector<std::string> result;
    for (LogLine& line : lines()) {
        result.push_back(std::move(line.text));
    }
    return result;
}

std::vector<std::string> LogCapture::texts(int priority, std::string_view tag) const {
    std::vector<std::string> result;
    for (LogLine& line : lines()) {
        if (line.priority == priority && line.tag == tag) {
            result.push_back(std::move(line.text));
        }
    }
    return result;
}

void LogCapture::clear() {
    const std::lock_guard<std::mutex> guard(gLock);
    mLines.clear();
}

}  // namespace mlk::testing
