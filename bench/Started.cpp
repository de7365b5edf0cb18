#include "bench/Started.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/inotify.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace mlk::bench {

namespace fs = std::filesystem;
using std::chrono::steady_clock;

namespace {

constexpr int kPatienceMs = 30000;

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + strerror(errno));
}

// Whether all threads of a process sleep.
bool isIdle(pid_t process) {
    for (const auto& task : fs::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
        std::ifstream stat(task.path() / "stat");
        std::string text;
        std::getline(stat, text);
        // The state follows the name, which may hold blanks and parentheses.
        const size_t name = text.rfind(") ");
        if (name == std::string::npos || text[name + 2] != 'S') {
            return false;
        }
    }
    return true;
}

// Exact, unlike the kernel's quick count, which is off by some tens of pages.
size_t residentOf(pid_t process) {
    std::ifstream sums("/proc/" + std::to_string(process) + "/smaps_rollup");
    std::string word;
    size_t kilobytes = 0;
    while (sums >> word) {
        if (word == "Rss:" && sums >> kilobytes) {
            return kilobytes * 1024;
        }
    }
    fail("no resident size");
}

}  // namespace

const std::set<std::string>& serviceNames() {
    static const std::set<std::string> names = {
            "vendor.morlak.mlkconfigs@1.0::IMlkProjectConfigs.default",
            "vendor.morlak.mlkconfigs@1.0::IMlkTvConfigs.default",
            "vendor.morlak.mlkconfigs@1.0::IMlkFrameworkConfigs.default"};
    return names;
}

std::string programBeside(const std::string& name) {
    return fs::read_symlink("/proc/self/exe").parent_path() / name;
}

Child::Child(const std::vector<std::string>& argv) {
    std::vector<char*> arguments;
    for (const std::string& argument : argv) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    const android::base::unique_fd null(open("/dev/null", O_RDWR | O_CLOEXEC));
    // The child shares this process's memory until exec, so that creating it takes the same time
    // regardless of this process's size.
    mPid = vfork();
    if (mPid == 0) {
        (void)prctl(PR_SET_PDEATHSIG, SIGKILL);
        for (int standard = 0; standard < 3; ++standard) {
            (void)dup2(null.get(), standard);
        }
        (void)execv(arguments[0], arguments.data());
        _exit(127);
    }
    if (mPid < 0) {
        fail("cannot start " + argv[0]);
    }
}

Child::~Child() {
    (void)kill(mPid, SIGKILL);
    (void)waitpid(mPid, nullptr, 0);
}

Started::Started(const std::vector<std::string>& argv, const std::set<std::string>& entries)
    : mWatch(inotify_init1(IN_CLOEXEC)) {
    const char* const folder = getenv("MLK_RUNTIME_DIR");
    if (folder == nullptr) {
        throw std::runtime_error("no runtime folder");
    }
    for (const auto& entry : fs::directory_iterator(folder)) {
        fs::remove_all(entry);
    }
    if (inotify_add_watch(mWatch.get(), folder, IN_CREATE | IN_MOVED_TO) < 0) {
        fail(folder);
    }
    const auto begin = steady_clock::now();
    mChild.emplace(argv);
    waitFor(entries);
    mTimeToReady = steady_clock::now() - begin;
}

void Started::waitFor(std::set<std::string> entries) {
    alignas(inotify_event) std::array<char, 4096> events;
    while (!entries.empty()) {
        pollfd descriptor{mWatch.get(), POLLIN, 0};
        if (poll(&descriptor, 1, kPatienceMs) != 1) {
            fail("process is not ready");
        }
        const ssize_t size = read(mWatch.get(), events.data(), events.size());
        if (size <= 0) {
            fail("cannot watch the runtime folder");
        }
        for (ssize_t at = 0; at < size;) {
            const auto* event = reinterpret_cast<const inotify_event*>(events.data() + at);
            if (event->len > 0) {
                entries.erase(event->name);
            }
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        }
    }
}

size_t Started::residentWhenIdle() const {
    // A sleeping thread may only be waiting for a page: the process is idle if it sleeps several
    // times in a row.
    constexpr int kTimes = 5;
    const auto end = steady_clock::now() + std::chrono::milliseconds(kPatienceMs);
    for (int times = 0; times < kTimes; times = isIdle(mChild->pid()) ? times + 1 : 0) {
        if (steady_clock::now() > end) {
            throw std::runtime_error("process does not come to rest");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return residentOf(mChild->pid());
}

}  // namespace mlk::bench
