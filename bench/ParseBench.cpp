// Reading a project file into a store: "parse/CONTESTANT/LINES", nanoseconds a file.
//
// Every contestant makes a store, reads the file into it and throws the store away.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Measure.h"
#include "bench/ProductLine.h"
#include "projectconfigs/ProjectParser.h"

namespace mlk::bench {

namespace {

using vendor::morlak::mlkconfigs::V1_0::implementation::ProjectParser;

struct Files {
    testing::HostSet set;
    std::string customer;  // names the system file, which names the project file
    std::string project;
    std::string tvdata = set.tvdata();
    std::string tvconfigs = set.tvconfigs();
    std::string impdata = set.impdata();

    explicit Files(size_t lines)
        : customer(writeProject(set, projectOfLines(lines))),
          project(set.dir().path("tvconfigs/project.ini")) {}
};

// The least that any reader does: take the bytes in and find the lines.
void limit(const Files& files) {
    static std::vector<char> buffer;
    const int file = open(files.project.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status {};
    if (file < 0 || fstat(file, &status) != 0) throw std::runtime_error("no project file");
    const auto size = static_cast<size_t>(status.st_size);
    if (buffer.size() < size) buffer.resize(size);
    if (read(file, buffer.data(), size) != status.st_size) throw std::runtime_error("short read");
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

void update(ProjectParser& parser, const Files& files) {
    parser.update(files.customer.c_str(), 1, "DEFAULT_BOARD_ID");
}

// The whole chain: the two small files that lead to the project file are read as well.
void ours(const Files& files) {
    ProjectParser parser(files.tvdata.c_str(), files.tvconfigs.c_str(), files.impdata.c_str());
    update(parser, files);
}

struct Contestant {
    const char* name;
    void (*read)(const Files& files);
};
constexpr Contestant kContestants[] = {{"limit", limit}, {"ours", ours}};

void measureParse(benchmark::State& state, const Contestant& contestant, size_t lines) {
    const Files files(lines);
    measureMedian(state, [&] { contestant.read(files); });
}

// A store that holds the set already reads it anew.
void measureReparse(benchmark::State& state, size_t lines) {
    const Files files(lines);
    ProjectParser parser(files.tvdata.c_str(), files.tvconfigs.c_str(), files.impdata.c_str());
    measureMedian(state, [&] { update(parser, files); });
}

void registerAll() {
    for (const size_t lines : {size_t{5000}, size_t{100000}}) {
        const std::string size = "/" + std::to_string(lines);
        const auto iterations = static_cast<benchmark::IterationCount>(lines < 10000 ? 40 : 5);
        for (const Contestant& contestant : kContestants) {
            benchmark::RegisterBenchmark((std::string("parse/") + contestant.name + size).c_str(),
                                         [&contestant, lines](benchmark::State& state) {
                                             measureParse(state, contestant, lines);
                                         })
                    ->Iterations(iterations);
        }
        benchmark::RegisterBenchmark(
                ("reparse/ours" + size).c_str(),
                [lines](benchmark::State& state) { measureReparse(state, lines); })
                ->Iterations(iterations);
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
