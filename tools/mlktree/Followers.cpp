#include "tools/mlktree/Followers.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/mlktree/FileText.h"
#include "tools/mlktree/FolderFiles.h"
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
           (finding.rule == "merge-conflict" && file != nullptr && isXml(file->format()));
}

// The lines that the findings of one rule spoil in one file: in their order, and none twice.
using Spoilt = std::vector<Finding::Lines>;

bool isEarlier(const Finding::Lines& one, const Finding::Lines& other) {
    return one.first < other.first;
}

bool spoils(const Finding& finding) {
    return finding.spoilt.first <= finding.spoilt.last;
}

// True if a finding lies in one of these lines and does not spoil as many itself.
bool isIn(const Spoilt& spoilt, const Finding& finding) {
    const size_t at = finding.place.line;
    const auto after =
            std::upper_bound(spoilt.begin(), spoilt.end(), Finding::Lines{at, at}, isEarlier);
    if (after == spoilt.begin() || at > std::prev(after)->last) {
        return false;
    }
    const Finding::Lines& lines = *std::prev(after);
    return !spoils(finding) ||
           finding.spoilt.last - finding.spoilt.first < lines.last - lines.first;
}

void leaveOutSpoilt(std::vector<Finding>& findings) {
    std::map<std::string, std::map<std::string, Spoilt>> files;  // by file and rule
    for (const Finding& finding : findings) {
        if (spoils(finding)) {
            files[finding.place.file][finding.rule].push_back(finding.spoilt);
        }
    }
    if (files.empty()) {
        return;
    }
    for (auto& [path, rules] : files) {
        for (auto& [rule, spoilt] : rules) {
            std::sort(spoilt.begin(), spoilt.end(), isEarlier);
        }
    }
    const auto follows = [&](const Finding& finding) {
        const auto rules = files.find(finding.place.file);
        return rules != files.end() &&
               std::any_of(rules->second.begin(), rules->second.end(), [&](const auto& each) {
                   return each.first != finding.rule && isIn(each.second, finding);
               });
    };
    findings.erase(std::remove_if(findings.begin(), findings.end(), follows), findings.end());
}

// The text of a file that no line names; empty if it is large.
std::string textOf(const ProductLine& line, const std::string& path) {
    constexpr size_t kMostBytes = size_t{1} << 20U;
    return textOrNothing(line.tree().host(path), kMostBytes);
}

// Files, found by what follows their partition's name.
class NamesOfFiles {
  public:
    explicit NamesOfFiles(const std::set<std::string>& paths) {
        for (const std::string& path : paths) {
            mPaths[path.substr(std::min(path.find('/'), path.size()))].push_back(path);
        }
        mPaths.erase("");
    }

    // Takes out and returns the files that a text names.
    std::vector<std::string> takeNamed(std::string_view text) {
        std::vector<std::string> named;
        for (size_t at = text.find('/'); at != std::string_view::npos;
             at = text.find('/', at + 1)) {
            takeNamedAt(text.substr(at), named);
        }
        return named;
    }

  private:
    // All names that the text begins with: each is found by cutting what the next one before the
    // text in order does not have.
    void takeNamedAt(std::string_view text, std::vector<std::string>& named) {
        for (auto next = mPaths.upper_bound(text); next != mPaths.begin();
             next = mPaths.upper_bound(text)) {
            const auto before = std::prev(next);
            const std::string_view name = before->first;
            const auto differing =
                    std::mismatch(name.begin(), name.end(), text.begin(), text.end()).first;
            const auto same = static_cast<size_t>(differing - name.begin());
            if (same == name.size()) {
                named.insert(named.end(), before->second.begin(), before->second.end());
                mPaths.erase(before);
            } else {
                text = text.substr(0, same);
            }
        }
    }

    std::map<std::string, std::vector<std::string>, std::less<>> mPaths;  // by name
};

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
    NamesOfFiles names(unused);
    for (size_t i = 0; i < texts.size(); ++i) {
        for (const std::string& path : names.takeNamed(texts[i])) {
            // What it names in turn is used by it only.
            texts.push_back(textOf(line, path));
            result.insert(path);
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
               (isAboutUnused(finding) && (mistaken.count(finding.place.file) > 0 ||
                                           mistaken.count(folderOf(finding.place.file)) > 0));
    };
    findings.erase(std::remove_if(findings.begin(), findings.end(), follows), findings.end());
}

}  // namespace mlk::tree
