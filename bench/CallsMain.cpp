// Measures a getter over IPC. Server and clients are separate processes:
//   "call/CONTESTANT/1"               nanoseconds per call, the server and one client on one core
//   "calls/CONTESTANT/4"              answers per second to that many clients, on all cores
//   "calls-crowded/CONTESTANT/CLIENTS" the same for more clients than the product has threads
//   "growth-calls/CONTESTANT/CLIENTS" the same for other numbers of clients

#include "bench/Calls.h"

#include <cstdio>
#include <exception>
#include <string>

#include "bench/Measure.h"
#include "bench/ProductLine.h"
#include "bench/Started.h"

namespace mlk::bench {

namespace {

constexpr int kMilliseconds = 250;

void measureCall(benchmark::State& state, const CallContestant& contestant,
                 const Payload& payload) {
    const OnOneCore pinned;
    const Started server = startServer(contestant);
    const std::unique_ptr<Caller> caller = contestant.connect(payload);
    for (benchmark::IterationCount i = 0; i < state.max_iterations / 10; ++i) {
        caller->call();
    }
    measureMedian(state, [&] { caller->call(); });
}

void measureCalls(benchmark::State& state, const CallContestant& contestant, const Payload& payload,
                  size_t clients) {
    const Started server = startServer(contestant);
    for (auto _ : state) {
        state.counters[kValue] = callsPerSecond(contestant, payload, clients, kMilliseconds);
    }
}

void addCalls(const char* family, const CallContestant& contestant, const Payload& payload,
              size_t clients) {
    const std::string name =
            std::string(family) + "/" + contestant.name + "/" + std::to_string(clients);
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
        measureCalls(state, contestant, payload, clients);
    })->Iterations(1);
}

void registerAll(const CallsProgram& program, const Payload& payload) {
    const std::vector<CallContestant> contestants = program.contestants(payload);
    for (const CallContestant& contestant : contestants) {
        const std::string name = std::string("call/") + contestant.name + "/1";
        benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
            measureCall(state, contestant, payload);
        })->Iterations(program.calls);
    }
    for (const CallContestant& one : contestants) {
        addCalls("calls", one, payload, 4);
    }
    for (const size_t clients : {16, 64}) {
        for (const CallContestant& one : program.crowded(payload)) {
            addCalls("calls-crowded", one, payload, clients);
        }
    }
    for (const size_t clients : program.clients) {
        for (const CallContestant& one : contestants) {
            addCalls("growth-calls", one, payload, clients);
        }
    }
}

// client CONTESTANT REQUEST REPLY MEMORY INDEX
int clientMain(const CallsProgram& program, char** argv) {
    const Payload payload{std::stoul(argv[1]), std::stoul(argv[2])};
    for (const CallContestant& contestant : program.contestants(payload)) {
        if (contestant.name == std::string(argv[0])) {
            return runClient(contestant, payload, std::stoi(argv[3]), std::stoul(argv[4]));
        }
    }
    return 2;
}

int benchMain(const CallsProgram& program, int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    testing::HostSet set;
    writeProductLine(set, {});
    const Payload payload = program.payload();
    benchmark::AddCustomContext("request_bytes", std::to_string(payload.request));
    benchmark::AddCustomContext("reply_bytes", std::to_string(payload.reply));
    registerAll(program, payload);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

}  // namespace

Started startServer(const CallContestant& contestant) {
    std::vector<std::string> argv = contestant.server;
    argv.front() = programBeside(argv.front());
    return {argv, contestant.entries};
}

int callsMain(int argc, char** argv, const CallsProgram& program) {
    try {
        if (argc == 7 && std::string(argv[1]) == "client") {
            return clientMain(program, argv + 2);
        }
        return benchMain(program, argc, argv);
    } catch (const std::exception& error) {
        fprintf(stderr, "%s: %s\n", argv[0], error.what());
        return 1;
    }
}

}  // namespace mlk::bench
