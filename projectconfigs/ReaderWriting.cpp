#include "projectconfigs/ReaderWriting.h"

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
#include <optional>

#include "projectconfigs/Places.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::base::unique_fd;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {

// A pipe becomes writable a page at a time. Between two pages, the writer checks this often whether
// the reader has read any byte.
constexpr milliseconds kGlance(50);

// Never freed: a thread may wait for its reader until the process ends.
Places& readers() {
    static Places& places = *new Places(kWaitForReaders);
    return places;
}

// The three kinds of descriptors with a reader have these members:
//   ssize_t takeNow(text)  writes what fits now; -1 with EAGAIN if nothing fits
//   int unread()           a number that changes when the reader reads, and by no other act of the
//                          other end

class Socket {
  public:
    explicit Socket(int descriptor) : mDescriptor(descriptor) {}

    ssize_t takeNow(std::string_view text) const {
        return send(mDescriptor, text.data(), std::min<size_t>(text.size(), PIPE_BUF),
                    MSG_DONTWAIT | MSG_NOSIGNAL);
    }

    // The bytes sent but not read. FIONREAD would count those that the other end has sent.
    int unread() const {
        int size = 0;
        (void)ioctl(mDescriptor, TIOCOUTQ, &size);
        return size;
    }

  private:
    const int mDescriptor;
};

// Moves bytes from a pipe of its own, because only splice() can be told not to wait. For write(),
// that is a flag of the descriptor, which belongs to the client, and a pipe that polls writable may
// be full again before the write.
class Pipe {
  public:
    explicit Pipe(int descriptor) : mDescriptor(descriptor) {
        static_cast<void>(::android::base::Pipe(&mOut, &mIn));
    }

    ssize_t takeNow(std::string_view text) {
        if (mHeld == 0) {
            const std::string_view piece = text.substr(0, PIPE_BUF);
            const ssize_t held = write(mIn.get(), piece.data(), piece.size());
            if (held <= 0) {
                return -1;  // the process has no descriptor left for the pipe
            }
            mHeld = static_cast<size_t>(held);
        }
        const ssize_t moved =
                splice(mOut.get(), nullptr, mDescriptor, nullptr, mHeld, SPLICE_F_NONBLOCK);
        mHeld -= moved > 0 ? static_cast<size_t>(moved) : 0;
        return moved;
    }

    int unread() const {
        int size = 0;
        (void)ioctl(mDescriptor, FIONREAD, &size);
        return size;
    }

  private:
    const int mDescriptor;
    unique_fd mOut;
    unique_fd mIn;
    size_t mHeld = 0;  // bytes in the pipe, which are moved next
};

// A terminal that polls writable takes one byte, but perhaps not two.
class Terminal {
  public:
    explicit Terminal(int descriptor) : mDescriptor(descriptor) {}

    ssize_t takeNow(std::string_view text) const {
        pollfd writable{mDescriptor, POLLOUT, 0};
        if (poll(&writable, 1, 0) == 0) {
            errno = EAGAIN;
            return -1;
        }
        return write(mDescriptor, text.data(), 1);
    }

    // A terminal does not tell what is unread; only the bytes that it takes count.
    static int unread() { return 0; }

  private:
    const int mDescriptor;
};

// A file, or a device that has no reader.
Written writeToFile(int descriptor, std::string_view text) {
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t wrote =
                TEMP_FAILURE_RETRY(write(descriptor, text.data() + done, text.size() - done));
        if (wrote <= 0) {
            return {WriteOutcome::FAILED, done};
        }
        done += static_cast<size_t>(wrote);
    }
    return {WriteOutcome::COMPLETE, done};
}

// Writes until all is written, or until the reader has read nothing for kReaderPatience.
template <typename Target>
Written writeWhileRead(int descriptor, std::string_view text, Target&& target) {
    constexpr int kUnknown = -1;
    size_t done = 0;
    std::optional<Places::Taken> place;
    int left = kUnknown;
    steady_clock::time_point end;
    while (done < text.size()) {
        const ssize_t wrote = TEMP_FAILURE_RETRY(target.takeNow(text.substr(done)));
        if (wrote > 0) {
            done += static_cast<size_t>(wrote);
            left = kUnknown;
            continue;
        }
        if (wrote == 0 || errno != EAGAIN) {
            return {WriteOutcome::FAILED, done};
        }
        if (!place) {
            place.emplace(readers());
        }
        if (!*place) {
            return {WriteOutcome::CROWDED, done};
        }
        if (const int size = target.unread(); size != left) {
            left = size;
            end = steady_clock::now() + kReaderPatience;
        } else if (steady_clock::now() >= end) {
            return {WriteOutcome::UNREAD, done};
        }
        pollfd writable{descriptor, POLLOUT, 0};
        (void)poll(&writable, 1, static_cast<int>(kGlance.count()));
    }
    return {WriteOutcome::COMPLETE, done};
}

}  // namespace

Written writeToReader(int descriptor, std::string_view text) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0) {
        return {WriteOutcome::FAILED, 0};
    }
    switch (status.st_mode & S_IFMT) {
        case S_IFIFO:
            return writeWhileRead(descriptor, text, Pipe(descriptor));
        case S_IFSOCK:
            return writeWhileRead(descriptor, text, Socket(descriptor));
        case S_IFCHR:
            if (isatty(descriptor) != 0) {
                return writeWhileRead(descriptor, text, Terminal(descriptor));
            }
            return writeToFile(descriptor, text);
        case S_IFREG:
            return writeToFile(descriptor, text);
        default:
            return {WriteOutcome::FAILED, 0};
    }
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
