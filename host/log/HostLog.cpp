#include "host/log/HostLog.h"

#include <android/log.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <new>
#include <string>
#include <vector>

#include "host/log/ClientLimits.h"
#include "host/log/LogClient.h"
#include "host/log/LogFilter.h"
#include "host/log/LogFormat.h"
#include "host/log/LogOutput.h"

namespace mlk::host {

namespace {

// Never freed: threads may log until the very end of the process.
LogOutput& output() {
    static LogOutput& theOutput = *new LogOutput(STDERR_FILENO);
    return theOutput;
}

ClientLimits& limits() {
    static ClientLimits& theLimits = *new ClientLimits;
    return theLimits;
}

void show(int priority, const char* tag, const std::string& message) {
    output().write(formatBrief(priority, tag, getpid(), message));
}

// The same for what a client makes the process log.
void showFor(int client, int priority, const char* tag, const std::string& message) {
    const std::string text = formatBrief(priority, tag, getpid(), message);
    const auto lines = static_cast<uint64_t>(std::count(text.begin(), text.end(), '\n'));
    if (limits().take(client, text.size(), lines, std::chrono::steady_clock::now())) {
        output().write(text);
    }
}

// Reports the lines left out of clients that have been quiet for long enough since.
void showLeftOut() {
    const auto now = std::chrono::steady_clock::now();
    while (const auto leftOut = limits().leftOut(now)) {
        show(ANDROID_LOG_WARN, "log",
             std::to_string(leftOut->lines) + " lines left out: process " +
                     std::to_string(leftOut->client) + " had more written than one client may");
    }
}

LogFilter readFilter() {
    const char* text = getenv("ANDROID_LOG_TAGS");
    std::vector<std::string> unknown;
    LogFilter result(text == nullptr ? "" : text, &unknown);
    if (!unknown.empty()) {
        std::string complaint = "ANDROID_LOG_TAGS: ignored, not of the form TAG[:VDIWEFS]:";
        for (const std::string& piece : unknown) {
            complaint += " \"" + piece + "\"";
        }
        show(ANDROID_LOG_WARN, "log", complaint);
    }
    return result;
}

const LogFilter& filter() {
    // Never freed: threads may log until the very end of the process.
    static const LogFilter& kFilter = *new LogFilter(readFilter());
    return kFilter;
}

void showLine(const __android_logger_data& data, const char* message) {
    const char* tag = data.tag == nullptr ? "" : data.tag;
    if (!filter().shows(data.priority, tag)) {
        return;
    }
    showLeftOut();
    const std::string text = message == nullptr ? "" : message;
    const int client = logClient();
    if (client == kNoClient) {
        show(data.priority, tag, text);
    } else {
        showFor(client, data.priority, tag, text);
    }
}

// Handlers of exceptions and destructors log, too: this must not throw.
void logger(const __android_logger_data* data, const char* message) noexcept {
    const int error = errno;
    try {
        showLine(*data, message);
    } catch (const std::bad_alloc&) {
        // The line is lost.
    }
    errno = error;
}

__attribute__((constructor)) void installAtStart() {
    mlk_host_log_install();
}

}  // namespace

}  // namespace mlk::host

void mlk_host_log_install() {
    __android_log_set_minimum_priority(mlk::host::filter().lowest());
    __android_log_set_logger(mlk::host::logger);
}
