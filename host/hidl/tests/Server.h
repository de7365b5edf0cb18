// A server process for a test, observed from outside.
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

/** Runs hidl_test_server until it is registered. Needs a HostSet. */
class Server {
  public:
    struct Options {
        std::string instance = "default";
        std::string threads = "4";  // with "+join": see ServerMain.cpp
        std::string descriptors;    // limit, or none
    };
    Server() : Server(Options()) {}
    explicit Server(const Options& options);
    /** Ends the server normally; a status other than 0 fails the test. */
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    pid_t pid() const { return mProcess->pid(); }
    /** A new proxy. */
    sp<IEverything> service() const;
    /** Kills the server and waits until it is gone. */
    void kill();
    /**
     * Waits until the server ends by itself. Returns its exit status, or 128 plus the number of the
     * signal.
     */
    int wait();
    /** Whether it writes this to standard error, now or soon. */
    bool says(const std::string& text) const { return mProcess->waitForErr(text); }
    /** The output to standard error so far. */
    std::string err() const { return mProcess->err(); }

  private:
    const Options mOptions;
    std::unique_ptr<testing::Process> mProcess;
    bool mOver = false;
};

/** Calls of hold() that are waiting in a server, each on a separate thread. */
class HeldCalls {
  public:
    /** Starts one call through each of these proxies. */
    explicit HeldCalls(const std::vector<sp<IEverything>>& proxies);
    ~HeldCalls();
    HeldCalls(const HeldCalls&) = delete;
    HeldCalls& operator=(const HeldCalls&) = delete;

    /** Waits until `count` calls have arrived; false when they do not. */
    bool arrived(size_t count);
    /** Whether another call arrives within a moment. */
    bool moreArrive();
    /**
     * Releases all calls and waits until they have returned. Returns the number of answered calls.
     */
    size_t release();

  private:
    struct Call;
    Pipe mArrivals;
    Pipe mGate;
    std::vector<std::unique_ptr<Call>> mCalls;
};

}  // namespace mlk::test
