// Measuring calls over IPC: contestants and client processes.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "bench/Started.h"

namespace mlk::bench {

/** A client's connection to a server. */
class Caller {
  public:
    Caller() = default;
    virtual ~Caller() = default;
    Caller(const Caller&) = delete;
    Caller& operator=(const Caller&) = delete;

    /** Makes one call and waits for the whole answer. Throws std::runtime_error on failure. */
    virtual void call() = 0;
};

/** Sizes in bytes of a getter's request and reply in our protocol. */
struct Payload {
    size_t request = 0;
    size_t reply = 0;
};

/** A way to call a server in a separate process. */
struct CallContestant {
    const char* name;
    /** The server, a program in the folder of this one, and its arguments. */
    std::vector<std::string> server;
    /** Its entry in the runtime folder once it accepts connections. */
    std::set<std::string> entries;
    /** Connects a client to it. */
    std::unique_ptr<Caller> (*connect)(const Payload& payload);
};

/** Starts the contestant's server and waits until it is ready. */
Started startServer(const CallContestant& contestant);

/** What a program that measures calls does. */
struct CallsProgram {
    /** Returns the contestants for a payload. */
    std::function<std::vector<CallContestant>(const Payload&)> contestants;
    /** The same for more clients than the product has threads. */
    std::function<std::vector<CallContestant>(const Payload&)> crowded;
    /** Determines the payload; the set exists by then. */
    std::function<Payload()> payload;
    /** The number of calls that are timed one by one. */
    int calls;
    /** Numbers of simultaneous clients for "growth-calls". */
    std::vector<size_t> clients;
};

/** The main function of such a program: measures, or runs as one of the clients. */
int callsMain(int argc, char** argv, const CallsProgram& program);

/** The product: the real service and the generated client. */
CallContestant ours();

/**
 * The minimum: the same numbers of bytes sent and received over a blocking stream socket, with one
 * server thread per connection or, if `threads` is not 0, with that many for all connections.
 */
CallContestant pingPong(const Payload& payload, size_t threads = 0);

/**
 * Measures the sizes of `ours` by calling the service through a relay. The service must be running.
 */
Payload payloadOfOurs();

/**
 * Returns the answers per second when `clients` processes call a server for `milliseconds`, each on
 * its own connection. The processes run this program with the arguments "client" and those of
 * runClient.
 */
double callsPerSecond(const CallContestant& contestant, const Payload& payload, size_t clients,
                      int milliseconds);

/** Runs in a client process: calls until it is told to stop. */
int runClient(const CallContestant& contestant, const Payload& payload, int sharedMemory,
              size_t index);

}  // namespace mlk::bench
