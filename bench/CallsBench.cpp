// A getter over IPC, server and clients being processes of their own:
//   "call/CONTESTANT/1"        nanoseconds a call, the server and one client on one core
//   "calls/CONTESTANT/CLIENTS" answers a second, on all cores

#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "bench/Calls.h"
#include "bench/Measure.h"
#include "bench/ProductLine.h"
#include "bench/Started.h"

namespace mlk::bench {

namespace {

constexpr int kCalls = 20000;
constexpr int kMilliseconds = 250;

std::vector<CallContestant> contestants(const Payload& payload) {
    return {pingPong(payload), ours()};
}

Started startServer(const CallContestant& contestant) {
    std::vector<std::string> argv = contestant.server;
    argv.front() = programBeside(argv.front());
    return {argv, contestant.entries};
}

void measureCall(benchmark::State& state, const CallContestant& contestant,
                 const Payload& payload) {
    const OnOneCore pinned;
    const Started server = startServer(contestant);
    const std::unique_ptr<Caller> caller = contestant.connect(payload);
    for (int i = 0; i < kCalls / 10; ++i) caller->call();
    measureMedian(state, [&] { caller->call(); });
}

void measureCalls(benchmark::State& state, const CallContestant& contestant, const Payload& payload,
                  size_t clients) {
    const Started server = startServer(contestant);
    for (auto _ : state) {
        state.counters[kValue] = callsPerSecond(contestant, payload, clients, kMilliseconds);
    }
}

void registerAll(const Payload& payload) {
    for (const CallContestant& contestant : contestants(payload)) {
        const std::string name = contestant.name;
        benchmark::RegisterBenchmark(("call/" + name + "/1").c_str(), [=](benchmark::State& state) {
            measureCall(state, contestant, payload);
        })->Iterations(kCalls);
    }
    for (const size_t clients : {size_t{4}}) {
        for (const CallContestant& contestant : contestants(payload)) {
            const std::string name = contestant.name;
            benchmark::RegisterBenchmark(("calls/" + name + "/" + std::to_string(clients)).c_str(),
                                         [=](benchmark::State& state) {
                                             measureCalls(state, contestant, payload, clients);
                                         })
                    ->Iterations(1);
        }
    }
}

// client CONTESTANT REQUEST REPLY MEMORY INDEX
int clientMain(char** argv) {
    const Payload payload{std::stoul(argv[1]), std::stoul(argv[2])};
    for (const CallContestant& contestant : contestants(payload)) {
        if (contestant.name == std::string(argv[0])) {
            return runClient(contestant, payload, std::stoi(argv[3]), std::stoul(argv[4]));
        }
    }
    return 2;
}

int benchMain(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    testing::HostSet set;
    writeProductLine(set, {});
    Payload payload;
    {
        const Started server = startServer(ours());
        payload = payloadOfOurs();
    }
    benchmark::AddCustomContext("request_bytes", std::to_string(payload.request));
    benchmark::AddCustomContext("reply_bytes", std::to_string(payload.reply));
    registerAll(payload);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

}  // namespace

}  // namespace mlk::bench

int main(int argc, char** argv) {
    try {
        if (argc == 7 && std::string(argv[1]) == "client") return mlk::bench::clientMain(argv + 2);
        return mlk::bench::benchMain(argc, argv);
    } catch (const std::exception& error) {
        fprintf(stderr, "bench_calls: %s\n", error.what());
        return 1;
    }
}
