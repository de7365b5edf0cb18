#include "tools/mlkctl/Interrupts.h"

#include <poll.h>
#include <unistd.h>

#include <cmath>
#include <ctime>

namespace mlk::ctl {

namespace {

volatile std::sig_atomic_t gSignalled = 0;
// The exit status during a question; negative otherwise.
volatile std::sig_atomic_t gStatus = -1;

void note(int /* signal */) {
    gSignalled = 1;
    if (gStatus >= 0) {
        _exit(gStatus);
    }
}

sigset_t ourSignals() {
    sigset_t signals;
    (void)sigemptyset(&signals);
    (void)sigaddset(&signals, SIGINT);
    (void)sigaddset(&signals, SIGTERM);
    return signals;
}

}  // namespace

Interrupts::Interrupts() : mFormerMask(), mFormerInterrupt(), mFormerTermination() {
    gSignalled = 0;
    // Blocked but for the pauses: so no signal falls between a look at the flag and the pause.
    const sigset_t blocked = ourSignals();
    (void)pthread_sigmask(SIG_BLOCK, &blocked, &mFormerMask);
    struct sigaction action {};
    action.sa_handler = note;
    (void)sigaction(SIGINT, &action, &mFormerInterrupt);
    (void)sigaction(SIGTERM, &action, &mFormerTermination);
}

Interrupts::~Interrupts() {
    (void)sigaction(SIGINT, &mFormerInterrupt, nullptr);
    (void)sigaction(SIGTERM, &mFormerTermination, nullptr);
    (void)pthread_sigmask(SIG_SETMASK, &mFormerMask, nullptr);
}

Interrupts::Pause Interrupts::wait(std::chrono::duration<double> time, int descriptor) const {
    const double seconds = std::floor(time.count());
    const timespec limit = {static_cast<time_t>(seconds),
                            static_cast<long>((time.count() - seconds) * 1e9)};
    sigset_t open = mFormerMask;
    (void)sigdelset(&open, SIGINT);
    (void)sigdelset(&open, SIGTERM);
    // No event is asked for: an error and the end of a pipe are reported all the same.
    pollfd output = {descriptor, 0, 0};
    const int ready = ppoll(&output, 1, &limit, &open);
    if (gSignalled != 0) {
        return Pause::INTERRUPTED;
    }
    return ready > 0 && (output.revents & (POLLERR | POLLHUP)) != 0 ? Pause::NO_READER
                                                                    : Pause::OVER;
}

Interrupts::Question::Question(const Interrupts& /* interrupts */, int status) {
    gStatus = status;
    const sigset_t open = ourSignals();
    (void)pthread_sigmask(SIG_UNBLOCK, &open, nullptr);
}

Interrupts::Question::~Question() {
    const sigset_t blocked = ourSignals();
    (void)pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
    gStatus = -1;
}

}  // namespace mlk::ctl
