#include "projectconfigs/ClientDescriptor.h"

#include <android-base/unique_fd.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <ctime>
#include <optional>

#include "projectconfigs/Places.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::base::unique_fd;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {

// A pipe becomes writable a page at a time: in between it is looked at whether any byte has gone.
constexpr milliseconds kGlance(50);

Places sWriters(kWriters);
Places sReaders(kWaitForReaders);

// While it lives, this thread's writes to a pipe that nobody reads fail instead of killing the
// process.
class SigpipeHeld {
  public:
    SigpipeHeld() {
        sigemptyset(&mSigpipe);
        sigaddset(&mSigpipe, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &mSigpipe, &mFormer);
    }
    ~SigpipeHeld() {
        const timespec now{};
        while (sigtimedwait(&mSigpipe, nullptr, &now) < 0 && errno == EINTR) {
        }
        pthread_sigmask(SIG_SETMASK, &mFormer, nullptr);
    }
    SigpipeHeld(const SigpipeHeld&) = delete;
    SigpipeHeld& operator=(const SigpipeHeld&) = delete;

  private:
    sigset_t mSigpipe{};
    sigset_t mFormer{};
};

template <typename Call>
ssize_t uninterrupted(const Call& call) {
    ssize_t result = 0;
    do {
        result = call();
    } while (result < 0 && errno == EINTR);
    return result;
}

// The two ways to write what a descriptor takes right now. Each gives its size; -1 with EAGAIN
// when there is no room.

ssize_t sendNow(int target, std::string_view text) {
    return send(target, text.data(), std::min<size_t>(text.size(), PIPE_BUF),
                MSG_DONTWAIT | MSG_NOSIGNAL);
}

// Bytes move over from a pipe of our own, because that can be asked not to wait: whether a write
// waits is a flag that belongs to the client, and a pipe that polls writable may be full again
// before it is written to.
class PipeWriter {
  public:
    PipeWriter() { static_cast<void>(::android::base::Pipe(&mOut, &mIn)); }

    ssize_t writeNow(int target, std::string_view text) {
        if (mHeld == 0) {
            const std::string_view piece = text.substr(0, PIPE_BUF);
            const ssize_t held = write(mIn.get(), piece.data(), piece.size());
            if (held <= 0) {
                return -1;  // there was no descriptor left for the pipe
            }
            mHeld = static_cast<size_t>(held);
        }
        const ssize_t moved =
                splice(mOut.get(), nullptr, target, nullptr, mHeld, SPLICE_F_NONBLOCK);
        mHeld -= moved > 0 ? static_cast<size_t>(moved) : 0;
        return moved;
    }

  private:
    unique_fd mOut;
    unique_fd mIn;
    size_t mHeld = 0;  ///< bytes in the pipe, the next ones to be moved
};

// Bytes that a pipe's reader has not read yet. Of a socket it is nothing that its reader changes.
int unread(int descriptor) {
    int size = 0;
    (void)ioctl(descriptor, FIONREAD, &size);
    return size;
}

// Writes until everything is written, or nothing was read for too long.
template <typename WriteNow>
Written writeToReader(int descriptor, std::string_view text, const WriteNow& writeNow) {
    constexpr int kUnknown = -1;
    size_t done = 0;
    std::optional<Places::Taken> place;
    int left = kUnknown;
    steady_clock::time_point end;
    while (done < text.size()) {
        const ssize_t wrote =
                uninterrupted([&] { return writeNow(descriptor, text.substr(done)); });
        if (wrote > 0) {
            done += static_cast<size_t>(wrote);
            left = kUnknown;
            continue;
        }
        if (errno != EAGAIN) {
            return {WriteOutcome::FAILED, done};
        }
        if (!place) {
            place.emplace(sReaders, milliseconds(0));
        }
        if (!*place) {
            return {WriteOutcome::CROWDED, done};
        }
        if (const int size = unread(descriptor); size != left) {
            left = size;
            end = steady_clock::now() + kReaderPatience;
        } else if (steady_clock::now() >= end) {
            return {WriteOutcome::UNREAD, done};
        }
        pollfd room{descriptor, POLLOUT, 0};
        (void)poll(&room, 1, static_cast<int>(kGlance.count()));
    }
    return {WriteOutcome::COMPLETE, done};
}

// What else there is cannot be asked to take a piece without waiting.
Written writeAndWait(int descriptor, std::string_view text) {
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t wrote = uninterrupted(
                [&] { return write(descriptor, text.data() + done, text.size() - done); });
        if (wrote <= 0) {
            return {WriteOutcome::FAILED, done};
        }
        done += static_cast<size_t>(wrote);
    }
    return {WriteOutcome::COMPLETE, done};
}

}  // namespace

Written writeToClient(int descriptor, std::string_view text) {
    // The turn of a text comes in microseconds, unless the other ends of all others hold them.
    const Places::Taken place(sWriters, kReaderPatience);
    if (!place) {
        return {WriteOutcome::CROWDED, 0};
    }
    struct stat status {};
    if (fstat(descriptor, &status) != 0) {
        return {WriteOutcome::FAILED, 0};
    }
    const SigpipeHeld held;
    switch (status.st_mode & S_IFMT) {
        case S_IFIFO: {
            PipeWriter writer;
            return writeToReader(descriptor, text, [&](int target, std::string_view rest) {
                return writer.writeNow(target, rest);
            });
        }
        case S_IFSOCK:
            return writeToReader(descriptor, text, sendNow);
        case S_IFREG:
        case S_IFCHR:
            return writeAndWait(descriptor, text);
        default:
            return {WriteOutcome::FAILED, 0};
    }
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
