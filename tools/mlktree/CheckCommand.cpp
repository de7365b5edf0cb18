#include <filesystem>
#include <optional>
#include <ostream>

#include "common/Paths.h"
#include "tools/common/Text.h"
#include "tools/mlktree/Baseline.h"
#include "tools/mlktree/CommonOptions.h"
#include "tools/mlktree/Examination.h"
#include "tools/mlktree/FileText.h"
#include "tools/mlktree/Formats.h"
#include "tools/mlktree/OpenTree.h"
#include "tools/mlktree/Progress.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/WrittenFile.h"

namespace mlk::tree {

namespace {

// A baseline; nothing if there is no such file.
std::optional<Baseline> readBaseline(const std::string& path) {
    const std::optional<std::string> text = textIfThere(path, kMostBaselineBytes);
    return text ? std::optional(Baseline::parse(*text, path)) : std::nullopt;
}

Severity severityOf(const std::string& name) {
    for (const Severity severity : {Severity::ERROR, Severity::NOTE}) {
        if (nameOf(severity) == name) {
            return severity;
        }
    }
    return Severity::WARNING;
}

// How paths of the tree are named from the current folder; those outside keep their name.
std::string fromHere(const Tree& tree, const std::string& path) {
    const std::filesystem::path host = std::filesystem::absolute(tree.host(path));
    const std::string relative =
            host.lexically_normal().lexically_relative(std::filesystem::current_path()).string();
    return relative.empty() || beginsWith(relative, "..") ? path : relative;
}

void applyBaseline(const Arguments& arguments, CheckReport& report, const LineOf& lineOf,
                   Environment& environment) {
    const bool isRenewed = arguments.has("--write-baseline");
    const std::string path = arguments.value(isRenewed ? "--write-baseline" : "--baseline");
    if (path.empty()) {
        return;
    }
    std::optional<Baseline> baseline = isRenewed ? std::nullopt : readBaseline(path);
    if (!baseline) {
        baseline = Baseline(report.findings, lineOf);
        WrittenFile file(path);
        file.write(baseline->text());
        file.finish();
        environment.errors << "mlktree: wrote " << printable(path) << ": "
                           << counted(baseline->size(), "finding") << " known from now on"
                           << std::endl;
    }
    baseline->apply(report, lineOf);
}

void print(const Arguments& arguments, const CheckReport& report, const FormatContext& context,
           Environment& environment) {
    const std::string name = arguments.value("--format", formats().front().first);
    Format format = formats().front().second;
    for (const auto& [one, function] : formats()) {
        if (one == name) {
            format = function;
        }
    }
    const std::string path = arguments.value("--output", "-");
    if (path == "-") {
        format(report, context, [&](std::string_view text) { environment.output.write(text); });
        return;
    }
    WrittenFile file(path);
    format(report, context, [&](std::string_view text) { file.write(text); });
    file.finish();
}

// Refuses options that contradict each other. A new baseline has what is known of all sets, so that
// none of them may be left out.
void checkBaselineOptions(const Arguments& arguments) {
    const bool isRenewed = arguments.has("--write-baseline");
    if (isRenewed && arguments.has("--baseline")) {
        throw UsageError("--baseline reads what --write-baseline writes; leave one of them out");
    }
    const std::string path = arguments.value("--baseline");
    if (!isRenewed &&
        (path.empty() || vendor::morlak::mlkconfigs::V1_0::implementation::pathExists(path))) {
        return;
    }
    std::string given;
    size_t count = 0;
    for (const Option& option : setOptions().options) {
        if (arguments.has(option.name)) {
            given += (count == 0 ? "" : " and ") + std::string(option.name);
            ++count;
        }
    }
    if (count > 0) {
        throw UsageError((isRenewed ? "--write-baseline writes"
                                    : "there is no file " + path + ", and a new one has") +
                         " the findings of all sets, and " + given +
                         (count == 1 ? " chooses some of them; leave it out"
                                     : " choose some of them; leave them out"));
    }
}

ExitStatus run(const Arguments& arguments, Environment& environment) {
    checkBaselineOptions(arguments);
    const Selection selection = selectionOf(arguments);
    const std::string word = arguments.words().empty() ? "" : arguments.words().front();
    Progress progress(environment.errors, environment.isErrorTerminal);
    progress.now("reading the tree");
    const OpenTree tree(arguments, word, environment, selection);
    const LineOf lineOf = linesOf(tree.line());
    const bool isWhole = !selection.model && selection.board.empty() &&
                         selection.customers.empty() && selection.country.empty();
    progress.now("checking the tree");
    CheckReport report = examine(tree.line(), isWhole);
    progress.stop();
    applyBaseline(arguments, report, lineOf, environment);
    if (!isWhole) {
        // A set that was not checked may still have them.
        report.gone = 0;
    }
    FormatContext context{
            lineOf, ruleFamilies(), severityOf(arguments.value("--fail-on")), false, "", {}};
    const bool isOnTerminal =
            arguments.value("--output", "-") == "-" && environment.output.isTerminal();
    context.isColoured = isColoured(arguments, environment, isOnTerminal);
    context.fromHere = [&](const std::string& path) { return fromHere(tree.tree(), path); };
    if (!tree.tree().root().empty()) {
        const auto root = std::filesystem::absolute(tree.tree().root()).lexically_normal();
        context.treeUri = "file://" + uriOf((root / "").string());
    }
    print(arguments, report, context, environment);
    return isFailed(report.findings, context.threshold) ? ExitStatus::FOUND
                                                        : ExitStatus::NOTHING_FOUND;
}

}  // namespace

Command checkCommand() {
    Command command;
    command.name = "check";
    command.words = {"[TREE]"};
    command.summary = "finds the mistakes of a product line";
    command.description =
            "Checks all sets that the tree has: all models, boards, customers and countries. The "
            "options below choose some. Findings name the place where the mistake is to be "
            "mended; mlktree rules tells what is looked for.\n\n"
            "A comment \"# mlktree: allow RULE REASON\" above a line allows findings of that rule "
            "there; \"//\" begins it in a channel plan, \"<!--\" in XML. Above the first line of a "
            "file it speaks of the file as a whole, too. For files that can hold no comment, such "
            "as lists of countries, mlktree.toml at the top of the tree has tables [[allow]].\n\n"
            "An old line starts with --baseline: the findings of the first run are known from then "
            "on, and only new ones count.";
    std::vector<std::string_view> names;
    for (const auto& [name, format] : formats()) {
        names.push_back(name);
    }
    command.groups = {
            {"Options",
             {
                     {"--fail-on",
                      0,
                      "SEVERITY",
                      "the least severity that makes the exit status 1",
                      Completion::CHOICE,
                      {"error", "warning", "note"},
                      "warning"},
                     formatOption(names),
                     outputOption("print to this file; \"-\" for standard output"),
                     {"--baseline", 0, "FILE",
                      "take the findings in FILE as known; if there is no such file, write today's "
                      "findings to it, not with an option that chooses sets",
                      Completion::FILE},
                     {"--write-baseline", 0, "FILE",
                      "write today's findings to FILE in any case; not with an option that chooses "
                      "sets",
                      Completion::FILE},
                     colorOption(),
             }},
            treeOptions(),
            setOptions(),
    };
    command.statuses = statusesOf("nothing found at or above the severity of --fail-on",
                                  "findings at or above it");
    command.examples = {
            {"mlktree check samples/partitions", "all sets of that tree"},
            {"mlktree check --model 6 --country GERMANY", "one model, one country"},
            {"mlktree check --format sarif -o check.sarif", "for other programs"},
            {"mlktree check --baseline known.json", "only what is new"},
    };
    command.mostWords = 1;
    command.nextWord = treeWord;
    command.run = run;
    return command;
}

}  // namespace mlk::tree
