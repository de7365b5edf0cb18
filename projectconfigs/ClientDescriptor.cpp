#include "projectconfigs/ClientDescriptor.h"

#include <android-base/unique_fd.h>
#include <fcntl.h>
#include <pthread.h>

#include <condition_variable>
#include <csignal>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "projectconfigs/Places.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::base::unique_fd;

namespace {

// Never freed: a thread may write until the process ends.
Places& writers() {
    static Places& places = *new Places(kWriters);
    return places;
}

// A text that is being written.
struct Writing {
    unique_fd descriptor;
    std::string text;
    std::function<void(const Written&)> done;
    std::unique_ptr<Places::Taken> place;

    std::mutex mutex;
    std::condition_variable ended;
    bool hasEnded = false;  // guarded by mutex
};

void run(Writing& writing) {
    const Written written = writeToReader(writing.descriptor.get(), writing.text);
    writing.descriptor.reset();
    writing.done(written);
    writing.place.reset();
    const std::lock_guard<std::mutex> lock(writing.mutex);
    writing.hasEnded = true;
    writing.ended.notify_all();
}

// Blocks all signals for threads that start during its life. Signals are for the process's own
// threads, and SIGPIPE must not end the process.
class NoSignals {
  public:
    NoSignals() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &mFormer);
    }
    ~NoSignals() { pthread_sigmask(SIG_SETMASK, &mFormer, nullptr); }
    NoSignals(const NoSignals&) = delete;
    NoSignals& operator=(const NoSignals&) = delete;

  private:
    sigset_t mFormer{};
};

bool start(const std::shared_ptr<Writing>& writing) {
    const NoSignals inherited;
    try {
        std::thread([writing] { run(*writing); }).detach();
    } catch (const std::system_error&) {
        return false;  // the system has no thread left
    }
    return true;
}

}  // namespace

void writeToClient(int descriptor, std::string text, std::function<void(const Written&)> done) {
    const auto writing = std::make_shared<Writing>();
    writing->place = std::make_unique<Places::Taken>(writers());
    if (!*writing->place) {
        done({WriteOutcome::CROWDED, 0});
        return;
    }
    // A copy, because the caller may close its own before the thread ends.
    writing->descriptor.reset(fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
    writing->text = std::move(text);
    writing->done = std::move(done);
    if (!writing->descriptor.ok() || !start(writing)) {
        writing->done({WriteOutcome::FAILED, 0});
        return;
    }
    std::unique_lock<std::mutex> lock(writing->mutex);
    writing->ended.wait_for(lock, kCallerPatience, [&] { return writing->hasEnded; });
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
