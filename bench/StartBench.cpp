// Measures the start of the service, nanoseconds from creating the process to the third name in the
// runtime folder, which is empty before:
//   "start/CONTESTANT/ITEMS"                 by number of items, with 10 models, 200 countries
//   "growth-start/CONTESTANT/ITEMS"          the same, at other sizes
//   "growth-start-models/CONTESTANT/MODELS"  with 500 items, 200 countries
//   "growth-start-countries/CONTESTANT/COUNTRIES"  with 500 items, 10 models
// and "resident/CONTESTANT/ITEMS", resident bytes of the idle process.

#include <memory>
#include <string>
#include <vector>

#include "bench/Measure.h"
#include "bench/ProductLine.h"
#include "bench/Started.h"

namespace mlk::bench {

namespace {

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

double timeOf(const Started& process) {
    return static_cast<double>(process.timeToReady().count());
}

double residentOf(const Started& process) {
    return static_cast<double>(process.residentWhenIdle());
}

// Starts all contestants in turn, so that a machine that slows down affects all of them equally,
// and returns the median of each.
std::vector<double> measureInTurn(const Size& size, int starts, double (*take)(const Started&)) {
    testing::HostSet set;
    writeProductLine(set, size);
    std::vector<std::vector<double>> values(contestants().size());
    // The first start of each loads its program and files into the page cache.
    for (int i = -1; i < starts; ++i) {
        for (size_t who = 0; who < values.size(); ++who) {
            const Contestant& contestant = contestants()[who];
            const double value =
                    take(Started({programBeside(contestant.program)}, contestant.entries));
            if (i >= 0) {
                values[who].push_back(value);
            }
        }
    }
    std::vector<double> medians;
    for (const std::vector<double>& ofOne : values) {
        medians.push_back(medianOf(ofOne));
    }
    return medians;
}

void add(const char* family, const Size& size, size_t number, int starts,
         double (*take)(const Started&)) {
    const auto medians = std::make_shared<std::vector<double>>();
    for (size_t who = 0; who < contestants().size(); ++who) {
        const std::string name =
                std::string(family) + "/" + contestants()[who].name + "/" + std::to_string(number);
        const auto measure = [=](benchmark::State& state) {
            for (auto _ : state) {
                if (medians->empty()) {
                    *medians = measureInTurn(size, starts, take);
                }
            }
            state.counters[kValue] = (*medians)[who];
        };
        benchmark::RegisterBenchmark(name.c_str(), measure)->Iterations(1);
    }
}

void registerAll() {
    constexpr int kStarts = 9;
    for (const size_t items : {size_t{500}, size_t{5000}}) {
        add("start", {items}, items, kStarts, timeOf);
    }
    add("resident", {5000}, 5000, 1, residentOf);
    for (const size_t items : {size_t{500}, size_t{5000}, size_t{50000}}) {
        add("growth-start", {items}, items, kStarts, timeOf);
    }
    for (const size_t models : {size_t{10}, size_t{100}, size_t{1000}}) {
        add("growth-start-models", {500, models}, models, kStarts, timeOf);
    }
    for (const size_t countries : {size_t{20}, size_t{60}, size_t{200}}) {
        add("growth-start-countries", {500, 10, countries}, countries, kStarts, timeOf);
    }
}

}  // namespace

}  // namespace mlk::bench

int main(int argc, char** argv) {
    return mlk::bench::benchMain(argc, argv, mlk::bench::registerAll);
}
