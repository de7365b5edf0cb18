// Measures looking up an item in the store, nanoseconds per answer:
//   "lookup/CONTESTANT/ITEMS"
//   "growth-lookup/CONTESTANT/ITEMS"  the same at other sizes, for the limit and ours
//
// The items asked for name files, as those of most getters do, and come in random order. Their
// texts are too long for the buffer inside a std::string, so every answer allocates memory.

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "bench/Measure.h"
#include "bench/ProductLine.h"
#include "bench/peers/IniStores.h"
#include "projectconfigs/ProjectParser.h"

namespace mlk::bench {

namespace {

using vendor::morlak::mlkconfigs::V1_0::implementation::ConfigKey;
using vendor::morlak::mlkconfigs::V1_0::implementation::ProjectParser;

/** The product's store with the interface of the others. */
class OurStore {
  public:
    OurStore(const std::string& customer, const Mounts& mounts)
        : mParser(mounts.tvdata, mounts.tvconfigs, mounts.impdata) {
        mParser.update(customer.c_str(), 1, "DEFAULT_BOARD_ID");
    }
    std::string getInfo(const Question& question) const {
        return mParser.getInfo(ConfigKey(question.category, question.key));
    }

  private:
    ProjectParser mParser;
};

// Shuffles in the same way every time.
template <typename T>
void shuffle(std::vector<T>& things) {
    std::shuffle(things.begin(), things.end(), std::mt19937(1));
}

struct Asked {
    testing::HostSet set;
    std::string customer;
    std::string tvdata = set.tvdata();
    std::string tvconfigs = set.tvconfigs();
    std::string impdata = set.impdata();
    Mounts mounts = {tvdata.c_str(), tvconfigs.c_str(), impdata.c_str()};
    std::vector<Question> inOrder;  // of the file
    std::vector<Question> questions;

    explicit Asked(size_t items) {
        const ProjectText project = projectOfItems(items);
        customer = writeProject(set, project);
        for (const Item& item : project.items) {
            if (!isPath(item.value)) {
                continue;
            }
            const std::string section = item.category.substr(1, item.category.size() - 2);
            inOrder.push_back({item.category, section, item.key});
        }
        questions = inOrder;
        shuffle(questions);
    }
};

bool isNothing(const std::string& answer) {
    return answer.empty();
}
bool isNothing(const KeyFileStore::Text& answer) {
    return answer == nullptr;
}

template <typename Store>
void measureStore(benchmark::State& state, const Asked& asked, const std::string& path) {
    const Store store(path, asked.mounts);
    for (const Question& question : asked.questions) {
        if (isNothing(store.getInfo(question))) {
            state.SkipWithError("an item is missing");
        }
    }
    const auto askAll = [&] {
        for (const Question& question : asked.questions) {
            const auto answer = store.getInfo(question);
            benchmark::DoNotOptimize(answer);
        }
    };
    measureMedian(state, askAll, static_cast<double>(asked.questions.size()));
}

void measureOurs(benchmark::State& state, const Asked& asked) {
    measureStore<OurStore>(state, asked, asked.customer);
}

template <typename Store>
void measurePeer(benchmark::State& state, const Asked& asked) {
    measureStore<Store>(state, asked, asked.set.dir().path("tvconfigs/project.ini"));
}

// The limit: copies texts whose addresses are known. They lie in memory in the order of the file,
// as in a store, and are copied in random order.
void measureLimit(benchmark::State& state, const Asked& asked) {
    const OurStore store(asked.customer, asked.mounts);
    std::vector<std::string> texts;
    for (const Question& question : asked.inOrder) {
        texts.push_back(store.getInfo(question));
    }
    std::vector<const std::string*> places;
    for (const std::string& text : texts) {
        places.push_back(&text);
    }
    shuffle(places);
    const auto copyAll = [&] {
        for (const std::string* text : places) {
            const std::string copy(*text);
            benchmark::DoNotOptimize(copy);
        }
    };
    measureMedian(state, copyAll, static_cast<double>(places.size()));
}

struct Contestant {
    const char* name;
    void (*measure)(benchmark::State& state, const Asked& asked);
};
constexpr Contestant kBoth[] = {{"limit", measureLimit}, {"ours", measureOurs}};
constexpr Contestant kPeers[] = {{"literal", measurePeer<LiteralStore>},
                                 {"GKeyFile", measurePeer<KeyFileStore>},
                                 {"std::map", measurePeer<MapStore>},
                                 {"sorted vector", measurePeer<SortedStore>}};

void add(const char* family, const Contestant& contestant, size_t items, int iterations) {
    const std::string name =
            std::string(family) + "/" + contestant.name + "/" + std::to_string(items);
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
        contestant.measure(state, Asked(items));
    })->Iterations(iterations);
}

void registerAll() {
    for (const Contestant& one : kBoth) {
        add("lookup", one, 5000, 200);
    }
    for (const Contestant& one : kPeers) {
        add("lookup", one, 5000, 50);
    }
    for (const Contestant& one : kBoth) {
        add("growth-lookup", one, 500, 1000);
        add("growth-lookup", one, 5000, 200);
        add("growth-lookup", one, 50000, 20);
    }
}

}  // namespace

}  // namespace mlk::bench

int main(int argc, char** argv) {
    return mlk::bench::benchMain(argc, argv, mlk::bench::registerAll);
}
