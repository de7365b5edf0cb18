// Asking the store for one of its items: "lookup/CONTESTANT/ITEMS", nanoseconds an answer.
//
// The items asked for are those that name files, as most getters' do, in no order. Their texts are
// too long to be kept inside a std::string, so every answer takes memory of its own.

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "bench/Measure.h"
#include "bench/ProductLine.h"
#include "projectconfigs/ProjectParser.h"

namespace mlk::bench {

namespace {

using vendor::morlak::mlkconfigs::V1_0::implementation::ConfigKey;
using vendor::morlak::mlkconfigs::V1_0::implementation::ProjectParser;

struct Questions {
    testing::HostSet set;
    ProjectText project;
    std::string customer;
    std::vector<ConfigKey> keys;
    std::vector<std::string> answers;

    explicit Questions(size_t items)
        : project(projectOfItems(items)), customer(writeProject(set, project)) {
        std::vector<Item> asked;
        std::copy_if(project.items.begin(), project.items.end(), std::back_inserter(asked),
                     [](const Item& item) { return isPath(item.value); });
        std::shuffle(asked.begin(), asked.end(), std::mt19937(1));
        for (const Item& item : asked) {
            keys.emplace_back(item.category, item.key);
            answers.push_back(item.value);
        }
    }
};

// Copying a text whose place is known.
void measureLimit(benchmark::State& state, size_t items) {
    const Questions questions(items);
    const auto askAll = [&] {
        for (const std::string& answer : questions.answers) {
            std::string copy(answer);
            benchmark::DoNotOptimize(copy);
        }
    };
    measureMedian(state, askAll, static_cast<double>(questions.answers.size()));
}

void measureOurs(benchmark::State& state, size_t items) {
    const Questions questions(items);
    const std::string tvdata = questions.set.tvdata();
    const std::string tvconfigs = questions.set.tvconfigs();
    const std::string impdata = questions.set.impdata();
    ProjectParser parser(tvdata.c_str(), tvconfigs.c_str(), impdata.c_str());
    parser.update(questions.customer.c_str(), 1, "DEFAULT_BOARD_ID");
    for (const ConfigKey& key : questions.keys) {
        if (parser.getInfo(key).empty()) state.SkipWithError("an item is missing");
    }
    const auto askAll = [&] {
        for (const ConfigKey& key : questions.keys) {
            std::string answer = parser.getInfo(key);
            benchmark::DoNotOptimize(answer);
        }
    };
    measureMedian(state, askAll, static_cast<double>(questions.keys.size()));
}

struct Contestant {
    const char* name;
    void (*measure)(benchmark::State& state, size_t items);
};
constexpr Contestant kContestants[] = {{"limit", measureLimit}, {"ours", measureOurs}};

void registerAll() {
    for (const size_t items : {size_t{5000}}) {
        for (const Contestant& contestant : kContestants) {
            benchmark::RegisterBenchmark(
                    (std::string("lookup/") + contestant.name + "/" + std::to_string(items))
                            .c_str(),
                    [&contestant, items](benchmark::State& state) {
                        contestant.measure(state, items);
                    })
                    ->Iterations(200);
        }
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
