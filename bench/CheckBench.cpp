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

// A product line, as mlktree opens it without options.
struct OpenedLine {
    explicit OpenedLine(const std::string& root)
        : partitions(root, {}),
          properties(root + "/data/property", {}),
          line(partitions, settings, properties, {}) {}

    const tree::Tree partitions;
    const tree::Settings settings;
    const tree::TreeProperties properties;
    const tree::ProductLine line;
};

size_t checkAll(const std::string& root) {
    const OpenedLine opened(root);
    return tree::check(opened.line).size();
}

size_t reportAll(const std::string& root) {
    const OpenedLine opened(root);
    const tree::ReportData data = tree::reportDataOf(opened.line, tree::examine(opened.line, true));
    return tree::inScript(data.summary).size() + tree::packed(data.data).size();
}

size_t snapshotOf(const std::string& root) {
    const OpenedLine opened(root);
    size_t size = 0;
    tree::writeSnapshot(*tree::answersOf(opened.line),
                        [&](std::string_view text) { size += text.size(); });
    return size;
}

size_t matrixOf(const std::string& root) {
    const OpenedLine opened(root);
    const auto answers = tree::answersOf(opened.line);
    const tree::Matrix matrix(*answers, {});
    size_t size = 0;
    tree::matrixText(matrix, {}, [&](std::string_view text) { size += text.size(); });
    return size;
}

// The files that a check reads: those that the sets use.
std::vector<std::string> filesOf(const std::string& root) {
    const OpenedLine opened(root);
    std::vector<std::string> paths;
    for (const auto& [path, file] : opened.line.files()) {
        paths.push_back(opened.partitions.host(path));
    }
    return paths;
}

// The partitions of a product line, written when the first benchmark needs them.
class WrittenLine {
  public:
    explicit WrittenLine(const LineSize& size) : mSize(size) {}

    std::string root() {
        if (mDir == nullptr) {
            mDir = std::make_unique<testing::TempDir>();
            writeTree(*mDir, mSize);
        }
        return mDir->path();
    }
    const std::vector<std::string>& files() {
        if (mFiles.empty()) {
            mFiles = filesOf(root());
        }
        return mFiles;
    }

  private:
    const LineSize mSize;
    std::unique_ptr<testing::TempDir> mDir;
    std::vector<std::string> mFiles;
};

using SharedLine = std::shared_ptr<WrittenLine>;

void addOurs(const std::string& family, const SharedLine& line, size_t number,
             size_t (*work)(const std::string& root)) {
    benchmark::RegisterBenchmark(
            (family + "/ours/" + std::to_string(number)).c_str(), [=](benchmark::State& state) {
                const std::string root = line->root();
                measureMedian(state, [&] { benchmark::DoNotOptimize(work(root)); });
            });
}

void addCheck(const std::string& family, const SharedLine& line, size_t number) {
    benchmark::RegisterBenchmark(
            (family + "/limit/" + std::to_string(number)).c_str(), [=](benchmark::State& state) {
                const std::vector<std::string>& files = line->files();
                measureMedian(state, [&] { benchmark::DoNotOptimize(readAll(files)); });
            });
    addOurs(family, line, number, checkAll);
}

void registerAll() {
    const LineSize size;
    const auto line = std::make_shared<WrittenLine>(size);
    addCheck("check", line, size.models);
    addOurs("report", line, size.models, reportAll);
    addOurs("snapshot", line, size.models, snapshotOf);
    addOurs("matrix", line, size.models, matrixOf);
    for (const size_t models : {size_t{50}, size_t{158}, size_t{500}}) {
        addCheck("growth-check-models", std::make_shared<WrittenLine>(LineSize{models}), models);
    }
    for (const size_t countries : {size_t{10}, size_t{40}, size_t{160}}) {
        addCheck("growth-check-countries",
                 std::make_shared<WrittenLine>(LineSize{100, 4, countries}), countries);
    }
}

}  // namespace

}  // namespace mlk::bench

int main(int argc, char** argv) {
    // As in mlktree: nobody reads the readers' log lines.
    (void)__android_log_set_minimum_priority(ANDROID_LOG_SILENT);
    return mlk::bench::benchMain(argc, argv, mlk::bench::registerAll);
}
