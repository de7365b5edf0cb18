// Measures reading a project file into a store, nanoseconds per file:
//   "parse/CONTESTANT/LINES"          a store is made, filled, sorted and destroyed
//   "update/ours/LINES"               the same without sorting
//   "reparse/ours/LINES"              a filled store reads the set again
//   "growth-parse/CONTESTANT/ITEMS"   as "parse", by number of items in the file
//   "growth-models/CONTESTANT/MODELS" as "parse", by number of models in the system file; the
//                                     limit is `read` and `memchr` of both files

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Measure.h"
#include "bench/ProductLine.h"
#include "bench/peers/IniStores.h"
#include "projectconfigs/ProjectParser.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

// The first walk sorts the items, but every public walk also writes them. This one only sorts.
struct ProjectParserPeer {
    static void putInOrder(const ProjectParser& parser) { (void)parser.mItems.inOrder(); }
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

namespace mlk::bench {

namespace {

using vendor::morlak::mlkconfigs::V1_0::implementation::ProjectParser;
using vendor::morlak::mlkconfigs::V1_0::implementation::ProjectParserPeer;

struct Files {
    testing::HostSet set;
    size_t models;
    std::string customer;  // names the system file, which names the project file
    std::string system = set.dir().path("tvconfigs/system.ini");
    std::string project = set.dir().path("tvconfigs/project.ini");
    std::string tvdata = set.tvdata();
    std::string tvconfigs = set.tvconfigs();
    std::string impdata = set.impdata();
    Mounts mounts = {tvdata.c_str(), tvconfigs.c_str(), impdata.c_str()};

    explicit Files(const ProjectText& text, size_t modelCount = 1)
        : models(modelCount), customer(writeProject(set, text, modelCount)) {}
};

// The minimum that any reader does: reads the bytes and finds the lines.
void readLines(const std::string& path) {
    static std::vector<char> buffer;
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status {};
    if (file < 0 || fstat(file, &status) != 0) {
        throw std::runtime_error(path);
    }
    const auto size = static_cast<size_t>(status.st_size);
    if (buffer.size() < size) {
        buffer.resize(size);
    }
    if (read(file, buffer.data(), size) != status.st_size) {
        throw std::runtime_error("short read");
    }
    (void)close(file);
    size_t lines = 0;
    const char* at = buffer.data();
    const char* const end = at + size;
    while (const void* found = memchr(at, '\n', static_cast<size_t>(end - at))) {
        at = static_cast<const char*>(found) + 1;
        ++lines;
    }
    benchmark::DoNotOptimize(lines);
}

void limit(const Files& files) {
    if (files.models > 1) {
        readLines(files.system);
    }
    readLines(files.project);
}

// Reads the whole chain, including the two small files that lead to the project file.
void fill(ProjectParser& parser, const Files& files) {
    parser.update(files.customer.c_str(), static_cast<int>(files.models), "DEFAULT_BOARD_ID");
}

void update(const Files& files) {
    ProjectParser parser(files.mounts.tvdata, files.mounts.tvconfigs, files.mounts.impdata);
    fill(parser, files);
}

void ours(const Files& files) {
    ProjectParser parser(files.mounts.tvdata, files.mounts.tvconfigs, files.mounts.impdata);
    fill(parser, files);
    ProjectParserPeer::putInOrder(parser);
}

template <typename Store>
void peer(const Files& files) {
    const Store store(files.project, files.mounts);
    benchmark::DoNotOptimize(&store);
}

struct Contestant {
    const char* name;
    void (*read)(const Files& files);
};
constexpr Contestant kBoth[] = {{"limit", limit}, {"ours", ours}};
constexpr Contestant kPeers[] = {
        {"literal", peer<LiteralStore>},  {"getline", peer<GetlineStore>},
        {"inih", peer<InihStore>},        {"SimpleIni", peer<SimpleIniStore>},
        {"GKeyFile", peer<KeyFileStore>}, {"Boost", peer<PropertyTreeStore>},
};

void measureReparse(benchmark::State& state, const Files& files) {
    ProjectParser parser(files.mounts.tvdata, files.mounts.tvconfigs, files.mounts.impdata);
    measureMedian(state, [&] {
        fill(parser, files);
        ProjectParserPeer::putInOrder(parser);
    });
}

// Writes the files only when the benchmark runs.
template <typename Make>
void add(const char* family, const Contestant& contestant, size_t size, int iterations,
         const Make& makeFiles) {
    const std::string name =
            std::string(family) + "/" + contestant.name + "/" + std::to_string(size);
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
        const Files files = makeFiles(size);
        if (contestant.read == nullptr) {
            return measureReparse(state, files);
        }
        measureMedian(state, [&] { contestant.read(files); });
    })->Iterations(iterations);
}

void registerAll() {
    const auto ofLines = [](size_t lines) { return Files(projectOfLines(lines)); };
    for (const size_t lines : {size_t{5000}, size_t{100000}}) {
        const bool few = lines < 10000;
        for (const Contestant& one : kBoth) {
            add("parse", one, lines, few ? 40 : 7, ofLines);
        }
        for (const Contestant& one : kPeers) {
            add("parse", one, lines, few ? 15 : 3, ofLines);
        }
        add("update", {"ours", update}, lines, few ? 40 : 7, ofLines);
        add("reparse", {"ours", nullptr}, lines, few ? 40 : 7, ofLines);
    }
    for (const Contestant& one : kBoth) {
        for (const size_t items : {size_t{500}, size_t{5000}, size_t{50000}}) {
            add("growth-parse", one, items, items < 10000 ? 100 : 10,
                [](size_t count) { return Files(projectOfItems(count)); });
        }
        for (const size_t models : {size_t{10}, size_t{100}, size_t{1000}}) {
            add("growth-models", one, models, 100,
                [](size_t count) { return Files(projectOfItems(500), count); });
        }
    }
}

}  // namespace

}  // namespace mlk::bench

int main(int argc, char** argv) {
    return mlk::bench::benchMain(argc, argv, mlk::bench::registerAll);
}
