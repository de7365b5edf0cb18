#include "tools/mlktree/Suppressions.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <utility>

#include "tools/common/Text.h"
#include "tools/mlktree/Patterns.h"
#include "tools/mlktree/Rule.h"
#include "tools/mlktree/Texts.h"

namespace mlk::tree {

namespace {

constexpr const char* kForm = "write \"mlktree: allow RULE reason\"";

Finding about(const char* rule, const Place& place, std::string message) {
    Finding finding;
    finding.rule = rule;
    finding.severity = findRule(rule)->severity;
    finding.place = place;
    finding.message = std::move(message);
    return finding;
}

// Whether the comment can be obeyed; adds what is wrong with it.
bool isSound(const AllowComment& comment, std::vector<Finding>& findings) {
    constexpr size_t kMostSuggestions = 100;  // a search takes long, and nobody reads more
    if (comment.instruction != "allow") {
        findings.push_back(
                about("unknown-rule", comment.place,
                      comment.instruction.empty()
                              ? std::string("the comment says nothing to mlktree; ") + kForm
                              : "mlktree does not know the word " + excerpt(comment.instruction) +
                                        "; " + kForm));
        return false;
    }
    if (comment.rule.empty() || findRule(comment.rule) == nullptr) {
        findings.push_back(about(
                "unknown-rule", comment.place,
                comment.rule.empty() ? std::string("no rule is named; ") + kForm
                                     : noRule(comment.rule, findings.size() < kMostSuggestions)));
        return false;
    }
    if (comment.reason.empty()) {
        findings.push_back(about("allow-without-reason", comment.place,
                                 "say why " + comment.rule + " is right here; " + kForm));
        return false;
    }
    return true;
}

// Moves the findings for which allowedAt() returns a value to the allowed ones.
template <typename AllowedAt>
void takeOut(Sorted& sorted, AllowedAt allowedAt) {
    std::vector<Finding> kept;
    for (Finding& finding : sorted.findings) {
        if (std::optional<Allowed> allowed = allowedAt(finding)) {
            allowed->finding = std::move(finding);
            sorted.allowed.push_back(std::move(*allowed));
        } else {
            kept.push_back(std::move(finding));
        }
    }
    sorted.findings = std::move(kept);
}

const RuleSetting* settingFor(const Settings& settings, const Finding& finding) {
    for (auto setting = settings.rules.rbegin(); setting != settings.rules.rend(); ++setting) {
        if ((setting->rule == "*" || setting->rule == finding.rule) &&
            fitsPath(setting->files, finding.place.file)) {
            return &*setting;
        }
    }
    return nullptr;
}

}  // namespace

void applyComments(Sorted& sorted, const std::vector<AllowComment>& comments, bool unused) {
    std::vector<Finding> wrong;
    // By rule, file and line; line 0 is the file as a whole.
    std::map<std::tuple<std::string, std::string, size_t>, std::vector<size_t>> allows;
    for (size_t i = 0; i < comments.size(); ++i) {
        const AllowComment& comment = comments[i];
        if (!isSound(comment, wrong)) {
            continue;
        }
        if (comment.target != 0) {
            allows[{comment.rule, comment.place.file, comment.target}].push_back(i);
        }
        if (comment.isAtBeginning) {
            allows[{comment.rule, comment.place.file, 0}].push_back(i);
        }
    }
    std::vector<bool> isUsed(comments.size());
    takeOut(sorted, [&](const Finding& finding) -> std::optional<Allowed> {
        const auto found = allows.find({finding.rule, finding.place.file, finding.place.line});
        if (found == allows.end()) {
            return std::nullopt;
        }
        for (const size_t i : found->second) {
            isUsed[i] = true;
        }
        return Allowed{{}, AllowedBy::COMMENT, comments[found->second.front()].reason};
    });
    for (const auto& [where, indexes] : allows) {
        for (const size_t i : indexes) {
            if (unused && !isUsed[i]) {
                isUsed[i] = true;
                wrong.push_back(about("unused-allow", comments[i].place,
                                      "the line below gives no finding of the rule " +
                                              comments[i].rule + "; remove the comment"));
            }
        }
    }
    std::move(wrong.begin(), wrong.end(), std::back_inserter(sorted.findings));
    std::sort(sorted.findings.begin(), sorted.findings.end());
}

void applySettings(Sorted& sorted, const Settings& settings, const std::string& file,
                   const LineOf& lineOf, bool unused) {
    std::vector<bool> isUsed(settings.allowances.size());
    takeOut(sorted, [&](const Finding& finding) -> std::optional<Allowed> {
        std::optional<std::string> text;  // of the line, when it is needed
        const auto hasText = [&](const Allowance& allowance) {
            if (!allowance.text.empty() && !text) {
                text = trimmed(lineOf(finding.place.file, finding.place.line));
            }
            return allowance.text.empty() || *text == trimmed(allowance.text);
        };
        for (size_t i = 0; i < settings.allowances.size(); ++i) {
            const Allowance& allowance = settings.allowances[i];
            // The pattern last: it takes longest.
            if (allowance.rule == finding.rule && hasText(allowance) &&
                fitsPath(allowance.files, finding.place.file)) {
                isUsed[i] = true;
                return Allowed{{}, AllowedBy::SETTINGS, allowance.reason};
            }
        }
        return std::nullopt;
    });
    for (size_t i = 0; unused && i < settings.allowances.size(); ++i) {
        if (!isUsed[i]) {
            sorted.findings.push_back(about("unused-allow", {file, settings.allowances[i].line, 0},
                                            "no line gives a finding of the rule " +
                                                    settings.allowances[i].rule +
                                                    " that this allows; remove the table"));
        }
    }
    std::map<std::pair<std::string, std::string>, const RuleSetting*> known;  // by rule and file
    takeOut(sorted, [&](Finding& finding) -> std::optional<Allowed> {
        const auto [at, isNew] = known.try_emplace({finding.rule, finding.place.file});
        if (isNew) {
            at->second = settingFor(settings, finding);
        }
        const RuleSetting* const setting = at->second;
        if (setting == nullptr) {
            return std::nullopt;
        }
        if (setting->severity == Severity::OFF) {
            return Allowed{{}, AllowedBy::SETTINGS, setting->reason};
        }
        finding.severity = setting->severity;
        return std::nullopt;
    });
    std::sort(sorted.findings.begin(), sorted.findings.end());
}

}  // namespace mlk::tree
