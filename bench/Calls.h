// Calls over IPC: who takes part, and how many processes call at once.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "bench/Started.h"

namespace mlk::bench {

/// A client's connection to a server.
class Caller {
  public:
    Caller() = default;
    virtual ~Caller() = default;
    Caller(const Caller&) = delete;
    Caller& operator=(const Caller&) = delete;

    /// One call, from the question to the whole answer. Throws std::runtime_error when it fails.
    virtual void call() = 0;
};

/// What a getter sends and gets on our wire, in bytes.
struct Payload {
    size_t request = 0;
    size_t reply = 0;
};

/// One way to ask a server that is a process of its own.
struct CallContestant {
    const char* name;
    /// The server, a program beside this one, and its arguments.
    std::vector<std::string> server;
    /// What it has in the runtime folder once it can be connected to.
    std::set<std::string> entries;
    /// A client's connection to it.
    std::unique_ptr<Caller> (*connect)(const Payload& payload);
};

/// Starts the contestant's server and waits for it.
Started startServer(const CallContestant& contestant);

/// What a program of calls measures.
struct CallsProgram {
    /// Who takes part, for a payload.
    std::function<std::vector<CallContestant>(const Payload&)> contestants;
    /// Finds out the payload; a set is there.
    std::function<Payload()> payload;
    /// Calls that are timed one by one.
    int calls;
    /// How many clients at once, beside 4, for what is named "growth-calls".
    std::vector<size_t> clients;
};

/// The main function of such a program: measures, or is a client of one.
int callsMain(int argc, char** argv, const CallsProgram& program);

/// The product: the real service and the generated client.
CallContestant ours();

/// The least that any of them does: the same number of bytes sent, awaited and sent back over a
/// blocking stream socket, with a thread a connection.
CallContestant pingPong(const Payload& payload);

/// Counts what `ours` sends and gets for a call, by calling it through a relay. The service has to
/// run.
Payload payloadOfOurs();

/// Answers a second when so many processes call a server at once, each on a connection of its own,
/// for `milliseconds`. The processes are this program, with the arguments "client" and those of
/// runClient.
double callsPerSecond(const CallContestant& contestant, const Payload& payload, size_t clients,
                      int milliseconds);

/// The client processes' side: calls until it is told to stop.
int runClient(const CallContestant& contestant, const Payload& payload, int sharedMemory,
              size_t index);

}  // namespace mlk::bench
