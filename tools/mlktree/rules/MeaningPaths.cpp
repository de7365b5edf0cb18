// Rules about the files that lines name.

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "common/Paths.h"
#include "projectconfigs/KnownItems.h"
#include "regional/RegionalNames.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/MeaningPath.h"
#include "tools/mlktree/rules/MissingFiles.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;
using product::pathExists;

void checkPartitions(const ProductLine& line, Reporter& reporter) {
    std::map<std::string, size_t> unchecked;
    for (const auto& [path, namings] : line.namedPaths()) {
        if (!hasPartition(line, path) && std::any_of(namings.begin(), namings.end(), isLookedFor)) {
            ++unchecked[path.substr(0, path.find('/'))];
        }
    }
    for (const auto& [name, count] : unchecked) {
        reporter.reportIn({"all"}, {name, 0, 0},
                          "the tree has no folder " + name + ": " +
                                  counted(count, "file", "files") +
                                  " in it that lines name cannot be checked");
    }
}

// True for files whose rules are those of XML files and plans.
bool isOfRegion(const FileLines* file) {
    if (file == nullptr) {
        return false;
    }
    switch (file->format()) {
        case FileFormat::TV_SYSTEMS:
        case FileFormat::COUNTRY_MAP:
        case FileFormat::CHANNEL_MAP:
        case FileFormat::CHANNEL_PLAN:
            return true;
        default:
            return false;
    }
}

// Why the service cannot use a file that exists; empty if it can.
std::string problemOfFile(const ProductLine& line, const std::string& path) {
    const FileLines* const file = line.find(path);
    if (isOfRegion(file)) {
        return "";
    }
    const std::string host = line.tree().host(path);
    struct stat info {};
    if (stat(host.c_str(), &info) != 0) {
        return "";
    }
    if (!S_ISREG(info.st_mode)) {
        return S_ISDIR(info.st_mode) ? "is a folder, not a file" : "is no regular file";
    }
    for (const Problem& problem : file != nullptr ? file->problems() : std::vector<Problem>()) {
        if (problem.isReadFailure()) {
            return problem.text();
        }
    }
    // Root may read all files, and the service does not run as root.
    const bool isReadable =
            (info.st_mode & (S_IRUSR | S_IRGRP | S_IROTH)) != 0 && access(host.c_str(), R_OK) == 0;
    return isReadable ? "" : "cannot be read: no permission";
}

void checkUnusableFiles(const ProductLine& line, Reporter& reporter) {
    for (const auto& [path, namings] : line.namedPaths()) {
        const std::string problem = problemOfFile(line, path);
        if (problem.empty()) {
            continue;
        }
        const std::string message = line.tree().written(line.tree().host(path)) + " " + problem;
        std::vector<const Naming*> users;
        for (const Naming& naming : namings) {
            if (naming.file == nullptr) {
                reporter.report({path, 0, 0}, message);
            } else if (isOfService(naming)) {
                users.push_back(&naming);
            }
        }
        if (!users.empty()) {
            reportNamed(line, reporter, path, users, message, {{{path, 0, 0}, "this file"}});
        }
    }
    for (const auto& [path, file] : line.files()) {
        const std::string problem = line.namings(path).empty() ? problemOfFile(line, path) : "";
        if (!problem.empty()) {
            reporter.report(placeOf(*file),
                            line.tree().written(line.tree().host(path)) + " " + problem);
        }
    }
}

// What a file is to a line that names it.
struct Kind {
    FileFormat format = FileFormat::NONE; /**< in which the service reads it; NONE if it does not */
    std::string_view section; /**< of the items that name an auxiliary file; else empty */

    bool operator<(const Kind& other) const {
        return std::tie(format, section) < std::tie(other.format, other.section);
    }
    bool operator!=(const Kind& other) const { return *this < other || other < *this; }
};

// "a country list", "an auxiliary file of [KEY]".
std::string describe(const Kind& kind) {
    const std::string name(nameOf(kind.format));
    return (name.front() == 'a' ? "an " : "a ") + name +
           (kind.section.empty() ? "" : " of " + std::string(kind.section));
}

Kind kindNamedBy(const ReadLine& item) {
    const auto* const known = product::findKnownItem({item.section, item.key});
    const bool isRead = known != nullptr && known->names != FileFormat::OPAQUE &&
                        known->names != FileFormat::CHANNEL_PLANS;
    if (!isRead) {
        return {};
    }
    return {known->names,
            known->names == FileFormat::AUXILIARY ? known->name.category : std::string_view()};
}

// The same for the lines of model and board files, by their contents.
std::vector<Kind> kindsNamedByItems(const ProductLine& line) {
    std::vector<Kind> kinds(line.contents().size());
    for (size_t i = 0; i < kinds.size(); ++i) {
        const LineContent& content = line.contents()[i];
        if (content.format == FileFormat::PROJECT && content.line->use == LineUse::ITEM) {
            kinds[i] = kindNamedBy(*content.line);
        }
    }
    return kinds;
}

Kind kindOf(const Naming& naming, const std::vector<Kind>& ofItems) {
    if (naming.file == nullptr || naming.line == nullptr) {
        return {};
    }
    switch (naming.file->format()) {
        case FileFormat::CUSTOMER:
            return {FileFormat::SYSTEM, {}};
        case FileFormat::SYSTEM:
        case FileFormat::BOARD_ID:
            return {FileFormat::PROJECT, {}};
        case FileFormat::PROJECT:
            return ofItems[naming.file->contentOf(*naming.line)];
        case FileFormat::TV_SYSTEMS:
            return kindNamedBy(*naming.line);
        case FileFormat::COUNTRY_MAP:
            return {naming.line->key == product::element::kFeaturesOfCountry
                            ? FileFormat::TV_FEATURES
                            : FileFormat::NONE,
                    {}};
        default:
            return {};
    }
}

void checkKinds(const ProductLine& line, Reporter& reporter) {
    const std::vector<Kind> ofItems = kindsNamedByItems(line);
    for (const auto& [path, namings] : line.namedPaths()) {
        std::map<Kind, std::vector<const Naming*>> kinds;
        std::vector<const Naming*>* last = nullptr;  // most lines have the kind of the last one
        Kind lastKind;
        for (const Naming& naming : namings) {
            const Kind kind = kindOf(naming, ofItems);
            if (kind.format == FileFormat::NONE) {
                continue;
            }
            if (last == nullptr || kind != lastKind) {
                last = &kinds[kind];
                lastKind = kind;
            }
            last->push_back(&naming);
        }
        if (kinds.size() < 2 || !pathExists(line.tree().host(path))) {
            continue;
        }
        // Most lines are right.
        const auto usual = std::max_element(
                kinds.begin(), kinds.end(),
                [](const auto& a, const auto& b) { return a.second.size() < b.second.size(); });
        const Naming& right = *usual->second.front();
        for (const auto& [kind, wrong] : kinds) {
            if (kind != usual->first) {
                reportNamed(line, reporter, path, wrong,
                            "this line needs " + describe(kind) + ", and " +
                                    line.tree().written(line.tree().host(path)) + " is " +
                                    describe(usual->first) + " to other lines",
                            {{placeOf(line, *right.file, *right.line, right.line->value),
                              "named here as " + describe(usual->first)}});
            }
        }
    }
}

constexpr Rule kRules[] = {
        {"missing-file", Severity::ERROR, "a line names a file that does not exist",
         "The service goes on without the file's content: sound delays are 0, lists and plans are "
         "empty, and clients get a path that leads nowhere.",
         "[AUDIO]\nAUDIO_CONFIG_PATH = /tvconfigs/audio/Panel.ini      (the file is panel.ini)",
         "[AUDIO]\nAUDIO_CONFIG_PATH = /tvconfigs/audio/panel.ini", checkMissingFiles},
        {"missing-partition", Severity::NOTE, "the tree has no folder tvdata or impdata",
         "These partitions belong to a set, and a platform tree may lack them. Files in them are "
         "not checked.",
         "a tree with the folder tvconfigs alone",
         "mlktree check --tvconfigs line/tvconfigs --tvdata line/tvdata --impdata factory/impdata",
         checkPartitions},
        {"unusable-file", Severity::ERROR, "a file that a line names cannot be used",
         "The service refuses folders, pipes, files without permission and files larger than their "
         "format allows, and goes on without their content.",
         "KARAOKE_CONFIG_PATH = /tvconfigs/karaoke      (a folder)",
         "KARAOKE_CONFIG_PATH = /tvconfigs/karaoke/home.ini", checkUnusableFiles},
        {"other-format", Severity::WARNING,
         "two lines name one file for two formats, or for two purposes",
         "A file has one format. Read in another one, it gives no items, or wrong ones.",
         "COUNTRY_PATH = /tvconfigs/country/eu.txt\nLANGUAGE_PATH = /tvconfigs/country/eu.txt",
         "COUNTRY_PATH = /tvconfigs/country/eu.txt\nLANGUAGE_PATH = /tvconfigs/language/eu.txt",
         checkKinds},
};

}  // namespace

RuleFamily paths() {
    return {"paths", "Files that lines name", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
