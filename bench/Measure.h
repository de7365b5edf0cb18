// How all benchmarks measure.
#pragma once

#include <benchmark/benchmark.h>
#include <sched.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <stdexcept>
#include <vector>

namespace mlk::bench {

/**
 * Name of the counter that the report reads. Its value is the median of the iterations if each of
 * them is long enough to be timed; a mean would depend on how often the machine was interrupted.
 */
constexpr const char* kValue = "value";

/**
 * Runs `operation` a few times to warm up, then once per iteration. Reports the median time in
 * nanoseconds, divided by the number of things that the operation does.
 */
template <typename Operation>
void measureMedian(benchmark::State& state, const Operation& operation, double things = 1) {
    using Clock = std::chrono::steady_clock;
    const auto warmUps = std::min<benchmark::IterationCount>(3, state.max_iterations / 2);
    for (benchmark::IterationCount i = 0; i < warmUps; ++i) {
        operation();
    }
    std::vector<double> times;
    times.reserve(static_cast<size_t>(state.max_iterations));
    for (auto _ : state) {
        const auto begin = Clock::now();
        operation();
        times.push_back(std::chrono::duration<double, std::nano>(Clock::now() - begin).count());
    }
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    state.counters[kValue] = *middle / things;
}

/** Binds the calling thread, and what it starts meanwhile, to the last core that it may use. */
class OnOneCore {
  public:
    OnOneCore() {
        if (sched_getaffinity(0, sizeof mFormer, &mFormer) != 0) {
            throw std::runtime_error("no cores");
        }
        int core = CPU_SETSIZE - 1;
        while (!CPU_ISSET(core, &mFormer)) {
            --core;
        }
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(core, &one);
        if (sched_setaffinity(0, sizeof one, &one) != 0) {
            throw std::runtime_error("cannot pin");
        }
    }
    ~OnOneCore() { (void)sched_setaffinity(0, sizeof mFormer, &mFormer); }
    OnOneCore(const OnOneCore&) = delete;
    OnOneCore& operator=(const OnOneCore&) = delete;

  private:
    cpu_set_t mFormer;
};

/**
 * The main function of a benchmark program: registers its benchmarks and runs those that the
 * command line selects.
 */
inline int benchMain(int argc, char** argv, void (*registerAll)()) {
    benchmark::Initialize(&argc, argv);
    registerAll();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

}  // namespace mlk::bench
