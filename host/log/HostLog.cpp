#include "host/log/HostLog.h"

#include <android/log.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <mutex>
#include <string>
#include <vector>

#include "host/log/LogFilter.h"
#include "host/log/LogFormat.h"

namespace mlk::host {

namespace {

/// Keeps the SIGPIPE of a write to a closed pipe from this thread, without touching what the
/// process does with the signal: programs under a log must not inherit an ignored one.
class NoBrokenPipe {
  public:
    NoBrokenPipe() {
        sigset_t pending;
        sigemptyset(&mSignal);
        sigaddset(&mSignal, SIGPIPE);
        sigpending(&pending);
        mWasPending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &mSignal, &mFormer);
    }
    ~NoBrokenPipe() {
        if (mBroken && !mWasPending) {
            const timespec noTime{};
            while (sigtimedwait(&mSignal, nullptr, &noTime) < 0 && errno == EINTR) {
            }
        }
        pthread_sigmask(SIG_SETMASK, &mFormer, nullptr);
    }
    NoBrokenPipe(const NoBrokenPipe&) = delete;
    NoBrokenPipe& operator=(const NoBrokenPipe&) = delete;

    void broken() { mBroken = true; }

  private:
    sigset_t mSignal{};
    sigset_t mFormer{};
    bool mWasPending = false;
    bool mBroken = false;
};

void writeAll(const std::string& text) {
    // A pipe may take a long message in pieces; the lock keeps other threads' out from between
    // them.
    static std::mutex lock;
    const std::lock_guard<std::mutex> guard(lock);
    NoBrokenPipe noBrokenPipe;
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t written = write(STDERR_FILENO, text.data() + done, text.size() - done);
        if (written >= 0) {
            done += static_cast<size_t>(written);
        } else if (errno != EINTR) {
            if (errno == EPIPE) {
                noBrokenPipe.broken();
            }
            return;
        }
    }
}

void show(int priority, const char* tag, const std::string& message) {
    writeAll(formatBrief(priority, tag, getpid(), message));
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

void logger(const __android_logger_data* data, const char* message) {
    const int error = errno;
    const char* tag = data->tag == nullptr ? "" : data->tag;
    if (filter().shows(data->priority, tag)) {
        show(data->priority, tag, message == nullptr ? "" : message);
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
