#include "tools/mlktree/Examination.h"

#include "tools/mlktree/Checker.h"
#include "tools/mlktree/Followers.h"
#include "tools/mlktree/Rule.h"
#include "tools/mlktree/Suppressions.h"

namespace mlk::tree {

namespace {

constexpr const char* kSettingsFile = "mlktree.toml";

// Findings about comments and tables have no sets yet.
void addSets(std::vector<Finding>& findings, const ProductLine& line) {
    for (Finding& finding : findings) {
        if (familyOf(finding.rule)->name == kAllowingFamily) {
            finding.sets = finding.place.file == kSettingsFile ? std::vector<std::string>{"all"}
                                                               : line.setsOf(finding.place.file);
        }
    }
}

}  // namespace

CheckReport examine(const ProductLine& line, bool isWhole) {
    Sorted sorted{check(line), {}};
    applyComments(sorted, allowCommentsOf(line), isWhole);
    applySettings(sorted, line.settings(), kSettingsFile, linesOf(line), isWhole);
    leaveOutFollowers(sorted.findings, line);
    addSets(sorted.findings, line);
    CheckReport report;
    report.tree = line.tree().root();
    report.sets = line.setCount();
    report.files = line.files().size();
    report.findings = std::move(sorted.findings);
    report.allowed = std::move(sorted.allowed);
    return report;
}

LineOf linesOf(const ProductLine& line) {
    return [&line](const std::string& file, size_t number) {
        return line.sources().line(file, number);
    };
}

}  // namespace mlk::tree
