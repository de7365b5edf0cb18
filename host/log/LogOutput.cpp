#include "host/log/LogOutput.h"

#include <android-base/unique_fd.h>
#include <android/log.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <ctime>

#include "host/log/LogFormat.h"

namespace mlk::host {

using ::android::base::unique_fd;
using std::chrono::nanoseconds;
using std::chrono::steady_clock;

namespace {

// Suppresses the SIGPIPE of this thread's write to a closed pipe. Leaves the process's handling of
// the signal unchanged, because started programs must not inherit an ignored signal.
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
        if (!mWasPending) {
            const timespec noTime{};
            (void)TEMP_FAILURE_RETRY(sigtimedwait(&mSignal, nullptr, &noTime));
        }
        pthread_sigmask(SIG_SETMASK, &mFormer, nullptr);
    }
    NoBrokenPipe(const NoBrokenPipe&) = delete;
    NoBrokenPipe& operator=(const NoBrokenPipe&) = delete;

  private:
    sigset_t mSignal{};
    sigset_t mFormer{};
    bool mWasPending = false;
};

// Whether opening the descriptor's path again gives the same pipe or terminal, with separate flags.
// (Terminals of major number 5 are different for each process that opens them.)
bool canBeOpenedAgain(const struct stat& status) {
    constexpr unsigned kOtherForEach = 5;
    return S_ISFIFO(status.st_mode) ||
           (S_ISCHR(status.st_mode) && major(status.st_rdev) != kOtherForEach);
}

unique_fd openedAgain(int descriptor) {
    const std::string path = "/proc/self/fd/" + std::to_string(descriptor);
    return unique_fd(open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
}

int millisecondsOf(nanoseconds time) {
    return static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(time).count());
}

uint64_t linesOf(std::string_view text) {
    return static_cast<uint64_t>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace

// The descriptor during one message, without waiting.
class LogOutput::Target {
  public:
    Target(int descriptor, const struct stat& status)
        : mDescriptor(descriptor), mIsSocket(S_ISSOCK(status.st_mode)) {
        if (canBeOpenedAgain(status)) {
            mOwn = openedAgain(descriptor);
        }
    }

    // Writes as many bytes as fit now and returns their number; -1 with EAGAIN when none do.
    ssize_t takeNow(std::string_view text) const {
        if (mOwn.ok()) {
            return ::write(mOwn.get(), text.data(), text.size());
        }
        if (mIsSocket) {
            return send(mDescriptor, text.data(), text.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
        }
        // May still wait if another process fills the space between poll and write.
        if (!hasSpace(0)) {
            errno = EAGAIN;
            return -1;
        }
        return ::write(mDescriptor, text.data(), std::min<size_t>(text.size(), PIPE_BUF));
    }

    bool hasSpace(int milliseconds) const {
        pollfd space{mDescriptor, POLLOUT, 0};
        return poll(&space, 1, milliseconds) == 1;
    }

  private:
    const int mDescriptor;
    const bool mIsSocket;
    unique_fd mOwn;
};

// Writes as much as the remaining patience allows and keeps the rest. False when nothing was
// written.
bool LogOutput::put(Target& target, std::string_view text) {
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t written = target.takeNow(text.substr(done));
        if (written >= 0) {
            done += static_cast<size_t>(written);
            mPatience = std::min<nanoseconds>(mPatience + written * kPatienceForByte, kPatience);
        } else if (errno == EAGAIN) {
            if (mPatience <= nanoseconds(0)) {
                break;
            }
            const auto begin = steady_clock::now();
            (void)target.hasSpace(millisecondsOf(mPatience));
            mPatience -= steady_clock::now() - begin;
        } else if (errno != EINTR) {
            return true;  // it takes nothing any more
        }
    }
    mRest = text.substr(done);
    if (done == 0) {
        mRest.clear();
    }
    return done > 0 || text.empty();
}

void LogOutput::writeToFile(std::string_view text) const {
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t written =
                TEMP_FAILURE_RETRY(::write(mDescriptor, text.data() + done, text.size() - done));
        if (written < 0) {
            return;
        }
        done += static_cast<size_t>(written);
    }
}

void LogOutput::forgetUnless(const File& file) {
    if (file.device == mFile.device && file.number == mFile.number) {
        return;
    }
    mFile = file;
    mRest.clear();
    mDropped = 0;
    mPatience = kPatience;
}

void LogOutput::write(std::string_view message) {
    const std::lock_guard<std::mutex> lock(mMutex);
    const NoBrokenPipe noBrokenPipe;
    struct stat status {};
    if (fstat(mDescriptor, &status) != 0) {
        return;
    }
    const bool isDevice = S_ISCHR(status.st_mode);
    const bool isTerminal = isDevice && isatty(mDescriptor) != 0;
    if (!isTerminal && (isDevice || S_ISREG(status.st_mode))) {
        writeToFile(message);
        return;
    }
    forgetUnless({status.st_dev, status.st_ino});
    const std::string escaped = isTerminal ? escapeControls(message) : std::string();
    if (isTerminal) {
        message = escaped;
    }

    Target target(mDescriptor, status);
    if (!mRest.empty()) {
        const std::string rest = std::move(mRest);
        if (!put(target, rest)) {
            mRest = rest;
        }
    }
    if (mRest.empty() && mDropped != 0) {
        const std::string notice = formatBrief(
                ANDROID_LOG_WARN, "log", getpid(),
                std::to_string(mDropped) + " lines dropped: nobody read standard error in time");
        if (put(target, notice)) {
            mDropped = 0;
        }
    }
    if (!mRest.empty() || mDropped != 0 || !put(target, message)) {
        mDropped += linesOf(message);
    }
}

}  // namespace mlk::host
