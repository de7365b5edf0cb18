// Starting the service: "start/CONTESTANT/ITEMS", nanoseconds from before the process is made to
// the third name in the runtime folder, and "resident/CONTESTANT/ITEMS", bytes once it is idle.
//
// Model files of so many items, 200 countries, no names left from a start before.

#include <string>
#include <vector>

#include "bench/Measure.h"
#include "bench/ProductLine.h"
#include "bench/Started.h"

namespace mlk::bench {

namespace {

constexpr int kStarts = 5;

struct Contestant {
    const char* name;
    const char* program;
    std::set<std::string> entries;
};

const std::vector<Contestant>& contestants() {
    static const std::vector<Contestant> all = {
            {"limit", "bench_empty", {"empty"}},
            {"ours", "vendor.morlak.mlconfigs@1.0-service", serviceNames()}};
    return all;
}

double medianOf(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

template <typename Take>
void measure(benchmark::State& state, const Contestant& contestant, size_t items,
             const Take& take) {
    testing::HostSet set;
    writeProductLine(set, {items});
    const std::vector<std::string> argv = {programBeside(contestant.program)};
    { const Started warm(argv, contestant.entries); }
    std::vector<double> values;
    for (auto _ : state) values.push_back(take(Started(argv, contestant.entries)));
    state.counters[kValue] = medianOf(values);
}

void registerAll() {
    for (const size_t items : {size_t{500}, size_t{5000}}) {
        const std::string size = "/" + std::to_string(items);
        for (const Contestant& contestant : contestants()) {
            benchmark::RegisterBenchmark(
                    (std::string("start/") + contestant.name + size).c_str(),
                    [&contestant, items](benchmark::State& state) {
                        measure(state, contestant, items, [](const Started& process) {
                            return static_cast<double>(process.timeToReady().count());
                        });
                    })
                    ->Iterations(kStarts);
        }
    }
    for (const Contestant& contestant : contestants()) {
        benchmark::RegisterBenchmark(
                (std::string("resident/") + contestant.name + "/5000").c_str(),
                [&contestant](benchmark::State& state) {
                    measure(state, contestant, 5000, [](const Started& process) {
                        return static_cast<double>(process.residentWhenIdle());
                    });
                })
                ->Iterations(1);
    }
}

}  // namespace

}  // namespace mlk::bench

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    mlk::bench::registerAll();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
