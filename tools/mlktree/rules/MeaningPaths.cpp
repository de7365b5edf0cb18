// Rules about the files that lines name.

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <vector>

#include "common/Paths.h"
#include "projectconfigs/KnownItems.h"
#include "regional/RegionalNames.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/MeaningPath.h"
#include "tools/mlktree/rules/NearFiles.h"
#include "tools/mlktree/rules/Regional.h"
#include "tools/mlktree/rules/Texts.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;
using product::pathExists;

// True if a line names a file in the form of a path into the partitions.
bool isLookedFor(const Naming& naming) {
    if (naming.file == nullptr || naming.line == nullptr || hasBlankInElement(*naming.line)) {
        return false;
    }
    // Other forms have rules of their own.
    return !isWholePath(naming) || formOf(naming) == PathForm::INSIDE;
}

// Reports a file once, at the first line that names it; the others are related.
void reportNamed(const ProductLine& line, Reporter& reporter, const std::string& path,
                 const std::vector<const Naming*>& namings, std::string message,
                 std::vector<Related> related) {
    constexpr size_t kMostRelated = 5;
    const auto placeOfName = [&](const Naming& naming) {
        return placeOf(line, *naming.file, *naming.line, naming.line->value);
    };
    for (size_t i = 1; i < namings.size() && i <= kMostRelated; ++i) {
        related.push_back({placeOfName(*namings[i]), "named here, too"});
    }
    if (namings.size() > kMostRelated + 1) {
        message += " (" + std::to_string(namings.size()) + " lines name it)";
    }
    reporter.reportIn(line.setsOf(path), placeOfName(*namings.front()), std::move(message),
                      std::move(related));
}

// What is to say about a file that does not exist, and the file that is meant.
struct Missing {
    std::string message;
    std::vector<Related> related;
};

Missing describeMissing(const ProductLine& line, const std::string& path, bool isSearched) {
    const Tree& tree = line.tree();
    const std::string host = tree.host(path);
    Missing missing{"there is no file " + tree.written(host), {}};
    if (const std::optional<std::string> target = linkTarget(host)) {
        missing.message =
                tree.written(host) + " is a link to " + *target + ", and there is no such file";
        return missing;
    }
    if (!isSearched) {
        return missing;
    }
    std::string other = inAnotherCase(host);
    if (!other.empty()) {
        missing.message += "; case counts, and there is " + tree.written(other);
    } else {
        other = nearFile(tree, host);
        missing.message += other.empty() ? "" : " (is " + tree.written(other) + " meant?)";
    }
    if (!other.empty()) {
        missing.related.push_back({{tree.relative(other), 0, 0}, "this file exists"});
    }
    return missing;
}

// False for a file of a partition that the tree does not have.
bool hasPartition(const ProductLine& line, const std::string& path) {
    const Partitions& partitions = line.tree().partitions();
    const std::string name = path.substr(0, path.find('/'));
    return name == "tvdata"    ? pathExists(partitions.tvdata)
           : name == "impdata" ? pathExists(partitions.impdata)
                               : true;
}

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

void checkMissingFiles(const ProductLine& line, Reporter& reporter) {
    for (const Customer& customer : line.customers()) {
        const std::string host = line.tree().host(customer.file->path());
        if (!pathExists(host)) {
            Missing missing = describeMissing(line, customer.file->path(), true);
            reporter.reportIn({"all"}, placeOf(*customer.file),
                              "everything begins with the customer file, and " + missing.message,
                              std::move(missing.related));
        }
    }
    constexpr size_t kMostSearches = 1'000;  // each reads whole folders
    size_t searches = 0;
    for (const auto& [path, namings] : line.namedPaths()) {
        std::vector<const Naming*> looking;
        for (const Naming& naming : namings) {
            if (isLookedFor(naming)) {
                looking.push_back(&naming);
            }
        }
        if (looking.empty() || pathExists(line.tree().host(path)) || !hasPartition(line, path)) {
            continue;
        }
        Missing missing = describeMissing(line, path, ++searches <= kMostSearches);
        reportNamed(line, reporter, path, looking, std::move(missing.message),
                    std::move(missing.related));
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
        if (problem.text.find("cannot be read") == 0) {
            return problem.text;
        }
    }
    return access(host.c_str(), R_OK) == 0 ? "" : "cannot be read: no permission";
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

// The format in which the service reads the file that an item names; NONE if it reads none.
FileFormat formatNamedBy(const ReadLine& item) {
    const auto* const known = product::findKnownItem({item.section, item.key});
    const bool isRead = known != nullptr && known->names != FileFormat::OPAQUE &&
                        known->names != FileFormat::CHANNEL_PLANS;
    return isRead ? known->names : FileFormat::NONE;
}

// The same for the lines of model and board files, by their contents.
std::vector<FileFormat> formatsNamedByItems(const ProductLine& line) {
    std::vector<FileFormat> formats(line.contents().size(), FileFormat::NONE);
    for (size_t i = 0; i < formats.size(); ++i) {
        const LineContent& content = line.contents()[i];
        if (content.format == FileFormat::PROJECT && content.line->use == LineUse::ITEM) {
            formats[i] = formatNamedBy(*content.line);
        }
    }
    return formats;
}

// The format in which the service reads the file that a line names.
FileFormat formatOf(const Naming& naming, const std::vector<FileFormat>& ofItems) {
    if (naming.file == nullptr || naming.line == nullptr) {
        return FileFormat::NONE;
    }
    switch (naming.file->format()) {
        case FileFormat::PROJECT:
            return ofItems[naming.file->contentOf(*naming.line)];
        case FileFormat::TV_SYSTEMS:
            return formatNamedBy(*naming.line);
        case FileFormat::COUNTRY_MAP:
            return naming.line->key == product::element::kFeaturesOfCountry
                           ? FileFormat::TV_FEATURES
                           : FileFormat::NONE;
        default:
            return FileFormat::NONE;
    }
}

void checkKinds(const ProductLine& line, Reporter& reporter) {
    const std::vector<FileFormat> ofItems = formatsNamedByItems(line);
    for (const auto& [path, namings] : line.namedPaths()) {
        std::map<FileFormat, std::vector<const Naming*>> kinds;
        std::vector<const Naming*>* last = nullptr;  // most lines have the kind of the last one
        FileFormat lastFormat = FileFormat::NONE;
        for (const Naming& naming : namings) {
            const FileFormat format = formatOf(naming, ofItems);
            if (format == FileFormat::NONE) {
                continue;
            }
            if (format != lastFormat) {
                last = &kinds[format];
                lastFormat = format;
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
        for (const auto& [format, wrong] : kinds) {
            if (format != usual->first) {
                reportNamed(line, reporter, path, wrong,
                            "this line needs a " + std::string(nameOf(format)) + ", and " +
                                    line.tree().written(line.tree().host(path)) + " is a " +
                                    std::string(nameOf(usual->first)) + " to other lines",
                            {{placeOf(line, *right.file, *right.line, right.line->value),
                              "named here as " + std::string(nameOf(usual->first))}});
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
        {"other-format", Severity::WARNING, "two lines name one file for two formats",
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
