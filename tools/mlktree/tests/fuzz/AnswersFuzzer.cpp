// What the sets of a partition tree answer, as snapshot, diff, matrix, plan and report tell it. The
// inputs are those of TreeFuzzer.cpp.

#include <tinyxml2.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>

#include "host/testing/TempDir.h"
#include "host/testing/fuzz/Fuzzing.h"
#include "tools/common/TextSink.h"
#include "tools/mlktree/Examination.h"
#include "tools/mlktree/answers/Snapshot.h"
#include "tools/mlktree/diff/DiffFormats.h"
#include "tools/mlktree/diff/LineDiff.h"
#include "tools/mlktree/matrix/MatrixFormats.h"
#include "tools/mlktree/plan/PlanPicture.h"
#include "tools/mlktree/plan/PlanText.h"
#include "tools/mlktree/report/Packed.h"
#include "tools/mlktree/report/ReportData.h"
#include "tools/mlktree/tests/fuzz/OpenedTree.h"
#include "tools/mlktree/tests/fuzz/OverlaidTree.h"

using namespace mlk::tree;
using mlk::TextSink;
namespace fuzzing = mlk::fuzzing;

namespace {

using Json = nlohmann::json;

std::string textOf(const std::function<void(const TextSink&)>& write) {
    std::string text;
    write([&](std::string_view piece) { text += piece; });
    return text;
}

std::string snapshotOf(const LineAnswers& answers) {
    return textOf([&](const TextSink& sink) { writeSnapshot(answers, sink); });
}

// A byte that is no UTF-8 is a lone surrogate, which the parser refuses.
Json parsed(std::string text) {
    for (size_t at = text.find("\\udc"); at != std::string::npos; at = text.find("\\udc", at)) {
        text.replace(at, 4, "\\u00");
    }
    Json json = Json::parse(text, nullptr, false);
    fuzzing::require(!json.is_discarded(), "JSON: " + fuzzing::printable(text));
    return json;
}

// No byte of a file is a command to a terminal.
void requirePlain(std::string_view what, std::string_view text) {
    const bool isPlain = std::all_of(text.begin(), text.end(), [](unsigned char c) {
        return c == '\n' || (c >= 0x20 && c != 0x7f);
    });
    fuzzing::require(isPlain,
                     std::string(what) + " has no control byte: " + fuzzing::printable(text));
}

void checkSnapshot(const LineAnswers& answers) {
    const std::string text = snapshotOf(answers);
    fuzzing::require(parsed(text)["sets"].size() == answers.sets.size(), "a snapshot has all sets");
    const std::unique_ptr<const LineAnswers> read = readSnapshot(text, "snapshot");
    const Difference difference = diffLines(*read, answers);
    fuzzing::require(difference.changes.empty(),
                     "a snapshot tells what the tree does, but " +
                             (difference.changes.empty()
                                      ? std::string()
                                      : fuzzing::printable(difference.changes.front().name)));
    const std::string again = snapshotOf(*read);
    fuzzing::requireEqual("a snapshot of a snapshot", snapshotOf(*readSnapshot(again, "again")),
                          again);
}

void checkDiff(const LineAnswers& a, const LineAnswers& b) {
    fuzzing::require(diffLines(b, b).changes.empty(), "nothing differs from itself");
    Difference difference = diffLines(a, b);
    const Json json =
            parsed(textOf([&](const TextSink& sink) { writeDiffJson(difference, sink); }));
    fuzzing::require(json["changes"].size() == difference.changes.size(),
                     "the JSON has all changes");
    fuzzing::require(diffLines(b, a).changes.empty() == difference.changes.empty(),
                     "what differs, differs the other way round");
    for (const Change& change : difference.changes) {
        fuzzing::require(change.a || change.b, "a change has a side");
        fuzzing::require(!change.name.empty() || change.kind == ChangeKind::ITEM,
                         "only an item may have no name");
    }
    requirePlain("a difference",
                 textOf([&](const TextSink& sink) { writeDiffText(difference, false, sink); }));
    requirePlain("its Markdown",
                 textOf([&](const TextSink& sink) { writeDiffMarkdown(difference, sink); }));
    if (!a.sets.empty() && !b.sets.empty()) {
        Difference sets = diffSets(a, a.sets.back(), b, b.sets.front());
        requirePlain("a difference of sets",
                     textOf([&](const TextSink& sink) { writeDiffText(sets, false, sink); }));
    }
}

void checkMatrix(const LineAnswers& answers) {
    const Matrix matrix(answers, {{}, true});
    const auto printed = [&](MatrixFormat format, MatrixLayout layout, size_t width) {
        return textOf([&](const TextSink& sink) { format(matrix, {layout, width, false}, sink); });
    };
    fuzzing::require(parsed(printed(matrixJson, MatrixLayout::AUTO, 80))["rows"].size() ==
                             matrix.rows().size(),
                     "the JSON has all rows");
    for (const MatrixLayout layout : {MatrixLayout::TABLE, MatrixLayout::LIST}) {
        for (const size_t width : {size_t{20}, size_t{100}}) {
            requirePlain("a matrix", printed(matrixText, layout, width));
        }
    }
    requirePlain("its Markdown", printed(matrixMarkdown, MatrixLayout::AUTO, 80));
    (void)printed(matrixCsv, MatrixLayout::AUTO, 80);
    size_t sets = 0;
    for (const std::vector<uint32_t>& column : matrix.columns()) {
        sets += column.size();
    }
    fuzzing::require(sets == answers.sets.size(), "each set stands in one column");
}

void checkPlans(const ProductLine& line) {
    for (const PlanFiles& files : line.planFolders()) {
        for (const _tv_country country : line.countries()) {
            for (CountryPlan& plan : plansOf({files.folder.get(), files.map}, country)) {
                const FileLines* const read = line.find(plan.file);
                if (read != nullptr) {
                    for (const auto& channel : read->channels()) {
                        plan.channels.push_back(channel);
                    }
                }
                const PlanView view = viewOf(plan, countryName(country), read);
                fuzzing::require(parsed(planJson(view))["channels"].size() == plan.channels.size(),
                                 "the JSON has all channels");
                requirePlain("a plan", planTable(view));
                tinyxml2::XMLDocument picture;
                fuzzing::require(picture.Parse(textOf([&](const TextSink& sink) {
                                                   drawPlan(view, sink);
                                               }).c_str()) == tinyxml2::XML_SUCCESS,
                                 "the picture of a plan is XML");
            }
        }
    }
}

void checkReport(const OpenedTree& opened) {
    const ReportData data = reportDataOf(opened.line, examine(opened.line, true));
    (void)parsed(data.data);
    (void)parsed(data.summary);
    fuzzing::require(inScript(data.summary).find('<') == std::string::npos,
                     "nothing in a script is markup");
    const std::string bytes = packed(data.data);
    fuzzing::require(bytes.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                             "0123456789+/=") == std::string::npos,
                     "the packed data is no markup");
    const OpenedTree second(opened.tree.root());
    const ReportData again = reportDataOf(second.line, examine(second.line, true));
    fuzzing::requireEqual("a second report", again.data, data.data);
    fuzzing::requireEqual("its summary", again.summary, data.summary);
    fuzzing::requireEqual("a second snapshot", snapshotOf(*answersOf(second.line)),
                          snapshotOf(*answersOf(opened.line)));
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const OpenedTree base(MLK_BASE_TREE);
    static const std::unique_ptr<const LineAnswers> answersOfBase = answersOf(base.line);
    static const mlk::testing::TempDir dir;
    OverlaidTree tree(dir.path(), MLK_BASE_TREE);
    tree.layOver({reinterpret_cast<const char*>(data), size});
    try {
        const OpenedTree opened(tree.path());
        const std::unique_ptr<const LineAnswers> answers = answersOf(opened.line);
        checkSnapshot(*answers);
        checkDiff(*answersOfBase, *answers);
        checkMatrix(*answers);
        checkPlans(opened.line);
        checkReport(opened);
    } catch (const UsageError& error) {
        // Settings that are no settings.
        fuzzing::require(std::string_view(error.what()).find("snapshot of mlktree") ==
                                 std::string_view::npos,
                         error.what());
    }
    return 0;
}
