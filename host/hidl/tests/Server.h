// A server process for a test, and what can be seen of it from outside.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Everything.h"
#include "Native.h"
#include "host/testing/Eventually.h"
#include "host/testing/Process.h"
#include "host/testing/ProcessUsage.h"

namespace mlk::test {

using testing::descriptorsOf;
using testing::eventually;
using testing::residentOf;
using testing::threadsOf;
using testing::timeOf;

// hidl_test_server, started and registered. Needs a HostSet around it.
class Server {
  public:
    struct Options {
        std::string instance = "default";
        std::string threads = "4";  // with "+join": see ServerMain.cpp
        std::string descriptors;    // limit, or none
    };
    Server() : Server(Options()) {}
    explicit Server(const Options& options);
    // Ends it in good order; a status other than 0 fails the test.
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    pid_t pid() const { return mProcess->pid(); }
    // A new proxy.
    sp<IEverything> service() const;
    // Kills it and waits until it is gone.
    void kill();
    // Waits until it has ended by itself: its exit status, or 128 and the signal's number.
    int wait();
    // Whether it writes this to standard error, now or soon.
    bool says(const std::string& text) const { return mProcess->waitForErr(text); }
    // What it has written to standard error so far.
    std::string err() const { return mProcess->err(); }

  private:
    const Options mOptions;
    std::unique_ptr<testing::Process> mProcess;
    bool mOver = false;
};

// Calls of hold() that are waiting in a server, each on a thread of its own.
class HeldCalls {
  public:
    // Starts the calls through these proxies, one a proxy.
    explicit HeldCalls(const std::vector<sp<IEverything>>& proxies);
    ~HeldCalls();
    HeldCalls(const HeldCalls&) = delete;
    HeldCalls& operator=(const HeldCalls&) = delete;

    // Waits until so many have arrived; false when they do not.
    bool arrived(size_t count);
    // Whether another one arrives within a moment.
    bool moreArrive();
    // Lets all go and waits until they have returned; how many were answered.
    size_t release();

  private:
    struct Call;
    Pipe mArrivals;
    Pipe mGate;
    std::vector<std::unique_ptr<Call>> mCalls;
};

}  // namespace mlk::test
