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

#include "host/testing/Sanitizers.h"

namespace mlk::test {

using std::chrono::milliseconds;

Server::Server(const Options& options) : mOptions(options) {
    std::vector<std::string> command{testing::binDir() + "/hidl_test_server", options.instance,
                                     options.threads};
    if (!options.descriptors.empty()) {
        command.push_back(options.descriptors);
    }
    testing::Process::Options how;
    how.keepInputOpen = true;
    mProcess = std::make_unique<testing::Process>(command, how);
    if (!mProcess->waitForOut("ready\n")) {
        throw std::runtime_error("the server does not start: " + mProcess->err());
    }
}

Server::~Server() {
    if (mOver) {
        return;
    }
    if (mOptions.threads.find("+join") != std::string::npos) {
        kill();
        return;
    }
    mProcess->closeInput();
    EXPECT_EQ(mProcess->wait(), 0) << mProcess->err();
}

sp<IEverything> Server::service() const {
    return IEverything::getService(mOptions.instance);
}

void Server::kill() {
    mOver = true;
    mProcess->kill(SIGKILL);
    EXPECT_EQ(mProcess->wait(), 128 + SIGKILL) << mProcess->err();
}

int Server::wait() {
    mOver = true;
    return mProcess->wait();
}

struct HeldCalls::Call {
    std::thread thread;
    bool answered = false;  // valid after the thread is joined
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
        if (poll(&arrivals, 1, 30 * 1000) != 1) {
            return false;
        }
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
        if (call->thread.joinable()) {
            call->thread.join();
        }
        if (call->answered) {
            ++answered;
        }
    }
    return answered;
}

}  // namespace mlk::test
