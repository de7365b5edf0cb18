#include "tools/mlktree/Followers.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "tools/mlktree/ProductLine.h"

namespace mlk::tree {

namespace {

constexpr const char* kUnusedFile = "unused-file";
constexpr const char* kUnusedAllow = "unused-allow";
constexpr const char* kUnnamedModel = "unnamed-model";

bool isMistake(const Finding& finding) {
    return finding.severity >= Severity::WARNING;
}

bool isAboutUnused(const Finding& finding) {
    return finding.rule == kUnusedFile || finding.rule == kUnnamedModel;
}

// True if a mistake keeps files from being read, so that nobody knows what is used.
bool hidesFiles(const Finding& finding, const ProductLine& line) {
    if (!isMistake(finding)) {
        return false;
    }
    const FileLines* const file = line.find(finding.place.file);
    const bool isOfChain = file != nullptr && (file->format() == FileFormat::CUSTOMER ||
                                               file->format() == FileFormat::SYSTEM);
    return isOfChain || finding.spoilt.last == kWholeFile.last || finding.rule == "malformed-xml" ||
           (finding.rule == "merge-conflict" &&
            finding.place.file.find(".xml") != std::string::npos);
}

void leaveOutSpoilt(std::vector<Finding>& findings) {
    std::map<std::string, std::vector<std::pair<Finding::Lines, std::string>>> spoilt;
    for (const Finding& finding : findings) {
        if (finding.spoilt.first <= finding.spoilt.last) {
            spoilt[finding.place.file].emplace_back(finding.spoilt, finding.rule);
        }
    }
    if (spoilt.empty()) {
        return;
    }
    const auto follows = [&](const Finding& finding) {
        const auto ranges = spoilt.find(finding.place.file);
        return ranges != spoilt.end() &&
               std::any_of(ranges->second.begin(), ranges->second.end(), [&](const auto& range) {
                   const auto& [lines, rule] = range;
                   const bool isLarger =
                           finding.spoilt.last - finding.spoilt.first >= lines.last - lines.first;
                   return rule != finding.rule && finding.place.line >= lines.first &&
                          finding.place.line <= lines.last &&
                          !(finding.spoilt.first <= finding.spoilt.last && isLarger);
               });
    };
    findings.erase(std::remove_if(findings.begin(), findings.end(), follows), findings.end());
}

// The text of a file that no line names; empty if it is large.
std::string textOf(const ProductLine& line, const std::string& path) {
    constexpr size_t kMostBytes = size_t{1} << 20U;
    std::ifstream stream(line.tree().host(path), std::ios::binary);
    std::string text(kMostBytes, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<size_t>(stream.gcount()));
    return text.size() < kMostBytes ? text : std::string();
}

// The files that are unused because of a mistake.
std::set<std::string> unusedByMistake(const std::vector<Finding>& findings,
                                      const ProductLine& line) {
    std::set<std::string> unused;
    std::vector<std::string> texts;
    std::set<std::string> result;
    constexpr size_t kMostTexts = 1'000;
    for (const Finding& finding : findings) {
        if (isAboutUnused(finding)) {
            unused.insert(finding.place.file);
            if (finding.rule == kUnnamedModel && texts.size() < kMostTexts) {
                texts.push_back(textOf(line, finding.place.file));
            }
        } else if (isMistake(finding)) {
            if (finding.place.line > 0 && texts.size() < kMostTexts) {
                texts.emplace_back(line.sources().line(finding.place.file, finding.place.line));
            }
            for (const Related& related : finding.related) {
                result.insert(related.place.file);
            }
        }
    }
    for (size_t i = 0; i < texts.size() && !unused.empty(); ++i) {
        for (auto path = unused.begin(); path != unused.end();) {
            const std::string name = path->substr(path->find('/'));
            if (texts[i].find(name) != std::string::npos) {
                // What it names in turn is used by it only.
                texts.push_back(textOf(line, *path));
                result.insert(*path);
                path = unused.erase(path);
            } else {
                ++path;
            }
        }
    }
    return result;
}

}  // namespace

void leaveOutFollowers(std::vector<Finding>& findings, const ProductLine& line) {
    leaveOutSpoilt(findings);
    const bool isBlind = std::any_of(findings.begin(), findings.end(), [&](const Finding& finding) {
        return hidesFiles(finding, line);
    });
    const bool hasUnused = std::any_of(findings.begin(), findings.end(), isAboutUnused);
    const std::set<std::string> mistaken =
            hasUnused ? unusedByMistake(findings, line) : std::set<std::string>();
    // What a file that is not read would have had to be allowed for, nobody knows.
    const bool hasErrors = std::any_of(findings.begin(), findings.end(), [](const Finding& f) {
        return f.severity == Severity::ERROR;
    });
    const auto follows = [&](const Finding& finding) {
        return (isBlind && finding.rule == kUnusedFile) ||
               ((isBlind || hasErrors) && finding.rule == kUnusedAllow) ||
               (isAboutUnused(finding) && mistaken.count(finding.place.file) > 0);
    };
    findings.erase(std::remove_if(findings.begin(), findings.end(), follows), findings.end());
}

}  // namespace mlk::tree
