#include "tools/mlktree/rules/MissingFiles.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "common/Paths.h"
#include "tools/mlktree/FolderFiles.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/MeaningPath.h"
#include "tools/mlktree/rules/NearFiles.h"
#include "tools/mlktree/rules/Regional.h"

namespace mlk::tree {

namespace {

using vendor::morlak::mlkconfigs::V1_0::implementation::fileNameOf;
using vendor::morlak::mlkconfigs::V1_0::implementation::pathExists;

constexpr size_t kMostRelated = 5;

Place placeOfName(const ProductLine& line, const Naming& naming) {
    return placeOf(line, *naming.file, *naming.line, naming.line->value);
}

// What is to say about a file that does not exist, and the file that is meant.
struct Missing {
    std::string message;
    std::string meant; /**< a file of this machine; empty if no file is near */
    std::vector<Related> related;
};

// The path with another spelling of its separators that leads to a file, and why; empty if none
// does.
std::string otherSeparators(const Tree& tree, const std::string& host) {
    std::string other = host;
    std::replace(other.begin(), other.end(), '\\', '/');
    if (other != host) {
        return pathExists(other) ? "; a \"\\\" separates no folders, write " + tree.written(other)
                                 : "; a \"\\\" separates no folders";
    }
    other.erase(other.find_last_not_of('/') + 1);
    return other != host && isRegularFile(other)
                   ? "; write " + tree.written(other) + " without the \"/\" at its end"
                   : "";
}

// The file that is meant is searched if `near` is not null.
Missing describeMissing(const ProductLine& line, const std::string& path, NearFiles* near) {
    const Tree& tree = line.tree();
    const std::string host = tree.host(path);
    Missing missing{"there is no file " + tree.written(host), {}, {}};
    if (const std::optional<std::string> target = linkTarget(host)) {
        missing.message =
                tree.written(host) + " is a link to " + *target + ", and there is no such file";
        return missing;
    }
    const std::string separators = otherSeparators(tree, host);
    missing.message += separators;
    if (near == nullptr || !separators.empty()) {
        return missing;
    }
    missing.meant = near->inAnotherCase(host);
    if (!missing.meant.empty()) {
        missing.message += "; case counts, and there is " + tree.written(missing.meant);
    } else {
        missing.meant = near->nearFile(host);
        missing.message +=
                missing.meant.empty() ? "" : " (is " + tree.written(missing.meant) + " meant?)";
    }
    if (!missing.meant.empty()) {
        missing.related.push_back({{tree.relative(missing.meant), 0, 0}, "this file exists"});
    }
    return missing;
}

// A file that does not exist, and the lines that name it.
struct MissingFile {
    std::string path;
    std::vector<const Naming*> lines;
};

bool isBefore(const Naming& one, const Naming& other) {
    return std::make_pair(std::string_view(one.file->path()), one.line->number) <
           std::make_pair(std::string_view(other.file->path()), other.line->number);
}

std::vector<MissingFile> missingFilesOf(const ProductLine& line) {
    std::vector<MissingFile> missing;
    for (const auto& [path, namings] : line.namedPaths()) {
        std::vector<const Naming*> looking;
        for (const Naming& naming : namings) {
            if (isLookedFor(naming)) {
                looking.push_back(&naming);
            }
        }
        if (!looking.empty() && !pathExists(line.tree().host(path)) && hasPartition(line, path)) {
            missing.push_back({path, std::move(looking)});
        }
    }
    return missing;
}

// True if some file that lines name in the folder, and not below it, exists.
bool hasNamedFile(const ProductLine& line, const std::string& folder) {
    const auto& paths = line.namedPaths();
    const std::string begin = folder + "/";
    auto each = paths.lower_bound(begin);
    while (each != paths.end() && beginsWith(each->first, begin)) {
        const size_t slash = each->first.find('/', begin.size());
        if (slash != std::string::npos) {
            // Past all that lies in the inner folder: '0' is the byte after '/'.
            each = paths.lower_bound(each->first.substr(0, slash) + "0");
            continue;
        }
        if (pathExists(line.tree().host(each->first))) {
            return true;
        }
        ++each;
    }
    return false;
}

// True if a comment above the line allows it to name a missing file.
bool isAllowed(const ProductLine& line, const Naming& naming) {
    for (size_t number = naming.line->number; number > 1; --number) {
        const std::string_view above = line.sources().line(naming.file->path(), number - 1);
        if (above.find("mlktree:") == std::string_view::npos) {
            return false;
        }
        if (above.find("missing-file") != std::string_view::npos) {
            return true;
        }
    }
    return false;
}

// Reports a folder that has none of the files that lines name in it, at the first of these lines.
void reportFolder(const ProductLine& line, Reporter& reporter, NearFiles& near,
                  const std::string& folder, std::vector<const MissingFile*> files) {
    std::sort(files.begin(), files.end(), [](const MissingFile* one, const MissingFile* other) {
        return isBefore(*one->lines.front(), *other->lines.front());
    });
    const Tree& tree = line.tree();
    const std::string host = tree.host(folder);
    const MissingFile& first = *files.front();
    const Missing missing = describeMissing(line, first.path, &near);
    std::string message =
            pathExists(host)
                    ? "none of the " + std::to_string(files.size()) + " files that lines name in " +
                              tree.written(host) + " exists"
                    : "there is no folder " + tree.written(host) + ", in which lines name " +
                              std::to_string(files.size()) + " files";
    std::vector<Related> related;
    const std::string meant = folderOf(missing.meant);
    if (!meant.empty() && meant != host) {
        message += lowerCase(meant) == lowerCase(host)
                           ? "; case counts, and there is " + tree.written(meant)
                           : " (is " + tree.written(meant) + " meant?)";
        related.push_back({{tree.relative(meant), 0, 0}, "this folder exists"});
    }
    std::set<std::string> sets;
    for (const MissingFile* const file : files) {
        for (const std::string& set : line.setsOf(file->path)) {
            sets.insert(set);
        }
        if (file != &first && related.size() < kMostRelated) {
            related.push_back({placeOfName(line, *file->lines.front()),
                               std::string(fileNameOf(file->path)) + " is missing, too"});
        }
    }
    const bool isAll = sets.count("all") > 0;
    reporter.reportIn(isAll ? std::vector<std::string>{"all"}
                            : std::vector<std::string>(sets.begin(), sets.end()),
                      placeOfName(line, *first.lines.front()), std::move(message),
                      std::move(related));
}

void checkCustomers(const ProductLine& line, Reporter& reporter, NearFiles& near) {
    for (const Customer& customer : line.customers()) {
        if (!pathExists(line.tree().host(customer.file->path()))) {
            Missing missing = describeMissing(line, customer.file->path(), &near);
            reporter.reportIn({"all"}, placeOf(*customer.file),
                              "everything begins with the customer file, and " + missing.message,
                              std::move(missing.related));
        }
    }
}

}  // namespace

bool isLookedFor(const Naming& naming) {
    if (naming.file == nullptr || naming.line == nullptr || hasBlankInElement(*naming.line)) {
        return false;
    }
    // Other forms have rules of their own.
    return !isWholePath(naming) || formOf(naming) == PathForm::INSIDE;
}

bool hasPartition(const ProductLine& line, const std::string& path) {
    const Partitions& partitions = line.tree().partitions();
    const std::string name = path.substr(0, path.find('/'));
    return name == "tvdata"    ? pathExists(partitions.tvdata)
           : name == "impdata" ? pathExists(partitions.impdata)
                               : true;
}

void reportNamed(const ProductLine& line, Reporter& reporter, const std::string& path,
                 const std::vector<const Naming*>& namings, std::string message,
                 std::vector<Related> related) {
    for (size_t i = 1; i < namings.size() && i <= kMostRelated; ++i) {
        related.push_back({placeOfName(line, *namings[i]), "named here, too"});
    }
    if (namings.size() > kMostRelated + 1) {
        message += " (" + std::to_string(namings.size()) + " lines name it)";
    }
    reporter.reportIn(line.setsOf(path), placeOfName(line, *namings.front()), std::move(message),
                      std::move(related));
}

void checkMissingFiles(const ProductLine& line, Reporter& reporter) {
    NearFiles near(line.tree());
    checkCustomers(line, reporter, near);
    constexpr size_t kFewestOfFolder = 3;
    constexpr size_t kMostSearches = 1'000;  // each compares many names
    const std::vector<MissingFile> all = missingFilesOf(line);
    std::map<std::string, std::vector<const MissingFile*>> folders;
    for (const MissingFile& file : all) {
        folders[folderOf(file.path)].push_back(&file);
    }
    size_t searches = 0;
    for (auto& [folder, files] : folders) {
        const bool isFolder = files.size() >= kFewestOfFolder && ++searches <= kMostSearches &&
                              !hasNamedFile(line, folder);
        if (isFolder) {
            // A comment allows what is missing in its own line.
            const auto allowed =
                    std::stable_partition(files.begin(), files.end(), [&](const MissingFile* file) {
                        return !isAllowed(line, *file->lines.front());
                    });
            if (allowed != files.begin()) {
                reportFolder(line, reporter, near, folder, {files.begin(), allowed});
            }
            files.erase(files.begin(), allowed);
        }
        for (const MissingFile* const file : files) {
            Missing missing = describeMissing(line, file->path,
                                              ++searches <= kMostSearches ? &near : nullptr);
            reportNamed(line, reporter, file->path, file->lines, std::move(missing.message),
                        std::move(missing.related));
        }
    }
}

}  // namespace mlk::tree
