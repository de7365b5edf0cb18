// Measures checking the partitions of a product line, nanoseconds for all of its sets:
//   "check/CONTESTANT/MODELS"                      4 boards, 60 countries and their plans
//   "report/ours/MODELS"                           the data of the page of `mlktree report`
//   "snapshot/ours/MODELS"                         all that `mlktree snapshot` does with them
//   "matrix/ours/MODELS"                           all that `mlktree matrix` does with them
//   "growth-check-models/CONTESTANT/MODELS"        the check at other sizes
//   "growth-check-countries/CONTESTANT/COUNTRIES"  with 100 models
//
// The limit reads every file of the partitions once and searches it for line feeds by memchr, on
// one core. Ours does all that `mlktree check` does except for printing the findings.

#include <android/log.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "bench/Measure.h"
#include "bench/TreeOfLine.h"
#include "common/File.h"
#include "tools/mlktree/Checker.h"
#include "tools/mlktree/Examination.h"
#include "tools/mlktree/answers/Snapshot.h"
#include "tools/mlktree/matrix/MatrixFormats.h"
#include "tools/mlktree/report/Packed.h"
#include "tools/mlktree/report/ReportData.h"

namespace mlk::bench {

namespace {

namespace fs = std::filesystem;
using vendor::morlak::mlkconfigs::V1_0::implementation::File;

size_t lineFeedsOf(const std::string& path, std::vector<char>& buffer) {
    File file(path);
    buffer.resize(std::max(buffer.size(), file.size() + 1));
    const ssize_t count = file.readUpTo(buffer.data(), file.size() + 1);
    size_t lines = 0;
    const char* at = buffer.data();
    const char* const end = at + std::max<ssize_t>(count, 0);
    while (const void* const found = std::memchr(at, '\n', static_cast<size_t>(end - at))) {
        at = static_cast<const char*>(found) + 1;
        ++lines;
    }
    return lines;
}

size_t readAll(const std::vector<std::string>& paths) {
    std::vector<char> buffer;
    size_t lines = 0;
    for (const std::string& path : paths) {
        lines += lineFeedsOf(path, buffer);
    }
    return lines;
}

size_t checkAll(const std::string& root) {
    const tree::Tree partitions(root, {});
    const tree::Settings settings;
    const tree::TreeProperties properties(root + "/data/property", {});
    const tree::ProductLine line(partitions, settings, properties, {});
    return tree::check(line).size();
}

size_t reportAll(const std::string& root) {
    const tree::Tree partitions(root, {});
    const tree::Settings settings;
    const tree::TreeProperties properties(root + "/data/property", {});
    const tree::ProductLine line(partitions, settings, properties, {});
    const tree::ReportData data = tree::reportDataOf(line, tree::examine(line, true));
    return tree::inScript(data.summary).size() + tree::packed(data.data).size();
}

size_t snapshotOf(const std::string& root) {
    const tree::Tree partitions(root, {});
    const tree::Settings settings;
    const tree::TreeProperties properties(root + "/data/property", {});
    const tree::ProductLine line(partitions, settings, properties, {});
    size_t size = 0;
    tree::writeSnapshot(*tree::answersOf(line),
                        [&](std::string_view text) { size += text.size(); });
    return size;
}

size_t matrixOf(const std::string& root) {
    const tree::Tree partitions(root, {});
    const tree::Settings settings;
    const tree::TreeProperties properties(root + "/data/property", {});
    const tree::ProductLine line(partitions, settings, properties, {});
    const auto answers = tree::answersOf(line);
    const tree::Matrix matrix(*answers, {});
    size_t size = 0;
    tree::matrixText(matrix, {}, [&](std::string_view text) { size += text.size(); });
    return size;
}

// The files that a check reads: those that the sets use.
std::vector<std::string> filesOf(const std::string& root) {
    const tree::Tree partitions(root, {});
    const tree::Settings settings;
    const tree::TreeProperties properties(root + "/data/property", {});
    const tree::ProductLine line(partitions, settings, properties, {});
    std::vector<std::string> paths;
    for (const auto& [path, file] : line.files()) {
        paths.push_back(partitions.host(path));
    }
    return paths;
}

void addReport(const LineSize& size) {
    const auto dir = std::make_shared<std::unique_ptr<testing::TempDir>>();
    benchmark::RegisterBenchmark(
            ("report/ours/" + std::to_string(size.models)).c_str(), [=](benchmark::State& state) {
                if (*dir == nullptr) {
                    *dir = std::make_unique<testing::TempDir>();
                    writeTree(**dir, size);
                }
                measureMedian(state, [&] { benchmark::DoNotOptimize(reportAll((*dir)->path())); });
            });
}

void add(const std::string& family, const LineSize& size, size_t number) {
    const auto dir = std::make_shared<std::unique_ptr<testing::TempDir>>();
    const auto paths = std::make_shared<std::vector<std::string>>();
    const auto prepare = [=] {
        if (*dir == nullptr) {
            *dir = std::make_unique<testing::TempDir>();
            writeTree(**dir, size);
            *paths = filesOf((*dir)->path());
        }
    };
    const std::string end = "/" + std::to_string(number);
    benchmark::RegisterBenchmark((family + "/limit" + end).c_str(), [=](benchmark::State& state) {
        prepare();
        measureMedian(state, [&] { benchmark::DoNotOptimize(readAll(*paths)); });
    });
    benchmark::RegisterBenchmark((family + "/ours" + end).c_str(), [=](benchmark::State& state) {
        prepare();
        measureMedian(state, [&] { benchmark::DoNotOptimize(checkAll((*dir)->path())); });
    });
    if (family == "check") {
        const auto addOther = [&](const std::string& name, size_t (*work)(const std::string&)) {
            benchmark::RegisterBenchmark((name + end).c_str(), [=](benchmark::State& state) {
                prepare();
                measureMedian(state, [&] { benchmark::DoNotOptimize(work((*dir)->path())); });
            });
        };
        addOther("snapshot/ours", snapshotOf);
        addOther("matrix/ours", matrixOf);
    }
}

void registerAll() {
    add("check", {}, LineSize().models);
    addReport({});
    for (const size_t models : {size_t{50}, size_t{158}, size_t{500}}) {
        add("growth-check-models", {models}, models);
    }
    for (const size_t countries : {size_t{10}, size_t{40}, size_t{160}}) {
        add("growth-check-countries", {100, 4, countries}, countries);
    }
}

}  // namespace

}  // namespace mlk::bench

int main(int argc, char** argv) {
    // As in mlktree: nobody reads the readers' log lines.
    (void)__android_log_set_minimum_priority(ANDROID_LOG_SILENT);
    return mlk::bench::benchMain(argc, argv, mlk::bench::registerAll);
}
