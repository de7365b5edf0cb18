#include "host/testing/ProcessPump.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>

#include <cerrno>
#include <cstdint>
#include <utility>

namespace mlk::testing {

using android::base::unique_fd;

ProcessPump::ProcessPump(unique_fd in, unique_fd out, unique_fd err, std::string input,
                         bool keepOpen)
    : mIn(std::move(in)),
      mFrom{std::move(out), std::move(err)},
      mWake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      mInput(std::move(input)),
      mKeepOpen(keepOpen) {
    for (const unique_fd* fd : {&mIn, &mFrom[OUT], &mFrom[ERR]}) {
        fcntl(fd->get(), F_SETFL, fcntl(fd->get(), F_GETFL) | O_NONBLOCK);
    }
    mThread = std::thread([this] { run(); });
}

ProcessPump::~ProcessPump() {
    finish();
}

std::string ProcessPump::text(Stream stream) const {
    const std::lock_guard<std::mutex> guard(mLock);
    return mTexts.at(stream);
}

bool ProcessPump::waitFor(Stream stream, std::string_view wanted,
                          std::chrono::seconds limit) const {
    std::unique_lock<std::mutex> guard(mLock);
    const std::string& text = mTexts.at(stream);
    const auto found = [&] { return text.find(wanted) != std::string::npos; };
    mChanged.wait_for(guard, limit, [&] { return mDone || found(); });
    return found();
}

void ProcessPump::send(std::string_view input) {
    {
        const std::lock_guard<std::mutex> guard(mLock);
        mInput += input;
    }
    wake();
}

void ProcessPump::closeInput() {
    {
        const std::lock_guard<std::mutex> guard(mLock);
        mKeepOpen = false;
    }
    wake();
}

void ProcessPump::finish() {
    {
        const std::lock_guard<std::mutex> guard(mLock);
        mFinishing = true;
    }
    wake();
    if (mThread.joinable()) {
        mThread.join();
    }
}

void ProcessPump::wake() {
    const uint64_t one = 1;
    // Fails only when the counter is full; then the thread is awake anyway.
    [[maybe_unused]] const ssize_t written = write(mWake.get(), &one, sizeof(one));
}

void ProcessPump::run() {
    // A program that does not read its input must not kill the test by SIGPIPE.
    sigset_t broken;
    sigemptyset(&broken);
    sigaddset(&broken, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &broken, nullptr);

    bool finishing = false;
    while (mFrom[OUT].ok() || mFrom[ERR].ok() || mIn.ok()) {
        feed();
        bool moved = false;
        for (const Stream stream : {OUT, ERR}) {
            moved = collect(stream) || moved;
        }
        // Only a round that began after the child's end has read its whole output.
        if (finishing && !moved) {
            break;
        }
        bool waiting = false;
        {
            const std::lock_guard<std::mutex> guard(mLock);
            if (!mFrom[OUT].ok() && !mFrom[ERR].ok()) {
                mDone = true;
                mChanged.notify_all();
            }
            if (mFinishing || moved) {
                finishing = mFinishing;
                continue;
            }
            waiting = !mInput.empty();
        }
        pollfd fds[] = {{mFrom[OUT].get(), POLLIN, 0},
                        {mFrom[ERR].get(), POLLIN, 0},
                        {mWake.get(), POLLIN, 0},
                        {waiting ? mIn.get() : -1, POLLOUT, 0}};
        poll(fds, std::size(fds), -1);
        uint64_t count = 0;
        [[maybe_unused]] const ssize_t got = read(mWake.get(), &count, sizeof(count));
    }
    const std::lock_guard<std::mutex> guard(mLock);
    mDone = true;
    mChanged.notify_all();
}

void ProcessPump::feed() {
    const std::lock_guard<std::mutex> guard(mLock);
    while (mIn.ok() && !mInput.empty()) {
        const ssize_t written = write(mIn.get(), mInput.data(), mInput.size());
        if (written >= 0) {
            mInput.erase(0, static_cast<size_t>(written));
        } else if (errno == EAGAIN) {
            return;
        } else if (errno != EINTR) {
            mIn.reset();
        }
    }
    if (!mKeepOpen || !mIn.ok()) {
        mInput.clear();
        mIn.reset();
    }
}

bool ProcessPump::collect(Stream stream) {
    unique_fd& from = mFrom.at(stream);
    if (!from.ok()) {
        return false;
    }
    std::array<char, 65536> buffer;
    const ssize_t got = read(from.get(), buffer.data(), buffer.size());
    if (got > 0) {
        const std::lock_guard<std::mutex> guard(mLock);
        mTexts.at(stream).append(buffer.data(), static_cast<size_t>(got));
        mChanged.notify_all();
        return true;
    }
    if (got == 0 || (errno != EAGAIN && errno != EINTR)) {
        from.reset();
    }
    return got < 0 && errno == EINTR;
}

}  // namespace mlk::testing
