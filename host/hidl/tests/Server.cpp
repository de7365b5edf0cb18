#include "Server.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "Sanitizers.h"

namespace mlk::test {

using std::chrono::milliseconds;

bool eventually(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        (void)poll(nullptr, 0, 1);
    }
    return true;
}

namespace {
size_t entriesOf(const std::string& folder) {
    size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        (void)entry;
        ++count;
    }
    return count;
}
}  // namespace

size_t descriptorsOf(pid_t pid) {
    // One's own listing holds the descriptor that it is read with.
    return entriesOf("/proc/" + std::to_string(pid) + "/fd") - (pid == getpid() ? 1 : 0);
}

size_t threadsOf(pid_t pid) {
    const size_t count = entriesOf("/proc/" + std::to_string(pid) + "/task");
    return kThreadSanitizer && count > 1 ? count - 1 : count;
}

size_t residentOf(pid_t pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/statm");
    size_t pages = 0;
    file >> pages >> pages;
    return pages * static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

milliseconds timeOf(pid_t pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string text;
    (void)std::getline(file, text);
    // Behind the program's name, which may hold anything, come the numbers; two of them are it.
    std::istringstream numbers(text.substr(text.rfind(')') + 2));
    std::string skipped;
    for (int i = 0; i < 11; ++i) numbers >> skipped;
    long user = 0;
    long system = 0;
    numbers >> user >> system;
    return milliseconds((user + system) * 1000 / sysconf(_SC_CLK_TCK));
}

Server::Server(const Options& options) : mOptions(options) {
    std::vector<std::string> command{testing::binDir() + "/hidl_test_server", options.instance,
                                     options.threads};
    if (!options.descriptors.empty()) command.push_back(options.descriptors);
    testing::Process::Options how;
    how.keepInputOpen = true;
    mProcess = std::make_unique<testing::Process>(command, how);
    if (!mProcess->waitForOut("ready\n")) {
        throw std::runtime_error("the server does not start: " + mProcess->err());
    }
}

Server::~Server() {
    if (mOver) return;
    if (mOptions.threads.find("+join") != std::string::npos) {
        kill();
        return;
    }
    mProcess->closeInput();
    EXPECT_EQ(0, mProcess->wait()) << mProcess->err();
}

sp<IEverything> Server::service() const {
    return IEverything::getService(mOptions.instance);
}

void Server::kill() {
    mOver = true;
    mProcess->kill(SIGKILL);
    EXPECT_EQ(128 + SIGKILL, mProcess->wait()) << mProcess->err();
}

int Server::wait() {
    mOver = true;
    return mProcess->wait();
}

struct HeldCalls::Call {
    std::thread thread;
    bool answered = false;  // good once the thread is joined
};

HeldCalls::HeldCalls(const std::vector<sp<IEverything>>& proxies) {
    for (const sp<IEverything>& proxy : proxies) {
        mCalls.push_back(std::make_unique<Call>());
        Call* call = mCalls.back().get();
        std::vector<unique_fd> ends;
        ends.emplace_back(dup(mArrivals.in.get()));
        ends.emplace_back(dup(mGate.out.get()));
        call->thread = std::thread([proxy, call, gate = handleOf(std::move(ends))] {
            call->answered = proxy->hold(gate).isOk();
        });
    }
}

HeldCalls::~HeldCalls() {
    (void)release();
}

bool HeldCalls::arrived(size_t count) {
    for (size_t i = 0; i < count; ++i) {
        pollfd arrivals{mArrivals.out.get(), POLLIN, 0};
        if (poll(&arrivals, 1, 30 * 1000) != 1) return false;
        (void)readFrom(mArrivals.out.get(), 1);
    }
    return true;
}

bool HeldCalls::moreArrive() {
    pollfd arrivals{mArrivals.out.get(), POLLIN, 0};
    return poll(&arrivals, 1, 200) == 1;
}

size_t HeldCalls::release() {
    mGate.in.reset();
    size_t answered = 0;
    for (const auto& call : mCalls) {
        if (call->thread.joinable()) call->thread.join();
        if (call->answered) ++answered;
    }
    return answered;
}

}  // namespace mlk::test
