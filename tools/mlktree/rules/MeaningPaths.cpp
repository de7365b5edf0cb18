// Rules about the files that lines name.

#include <dirent.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <iterator>
#include <memory>
#include <optional>

#include "common/Paths.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/MeaningPath.h"
#include "tools/mlktree/rules/Regional.h"

namespace mlk::tree {

namespace {

using vendor::morlak::mlkconfigs::V1_0::implementation::fileNameOf;
using vendor::morlak::mlkconfigs::V1_0::implementation::pathExists;

// The path that exists and differs from this one in the case of letters only.
std::optional<std::string> inAnotherCase(const std::string& host) {
    std::string found = host.front() == '/' ? "" : ".";
    size_t at = 0;
    while (at < host.size()) {
        const size_t begin = host.find_first_not_of('/', at);
        if (begin == std::string::npos) {
            break;
        }
        const size_t end = std::min(host.find('/', begin), host.size());
        const std::string part = host.substr(begin, end - begin);
        at = end;
        if (pathExists(found + "/" + part)) {
            found += "/" + part;
            continue;
        }
        const std::unique_ptr<DIR, int (*)(DIR*)> folder(
                opendir(found.empty() ? "/" : found.c_str()), closedir);
        std::string match;
        for (const dirent* entry = nullptr;
             folder != nullptr && (entry = readdir(folder.get())) != nullptr;) {
            if (strcasecmp(entry->d_name, part.c_str()) == 0) {
                match = entry->d_name;
                break;
            }
        }
        if (match.empty()) {
            return std::nullopt;
        }
        found += "/" + match;
    }
    return host.front() == '/' ? found : found.substr(2);
}

// True if a line names a file in the form of a path into the partitions.
bool isLookedFor(const Naming& naming) {
    if (naming.file == nullptr || naming.line == nullptr || hasBlankInElement(*naming.line)) {
        return false;
    }
    // Other forms have rules of their own.
    return !isWholePath(naming) || formOf(naming.line->value) == PathForm::INSIDE;
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

void checkMissingFiles(const ProductLine& line, Reporter& reporter) {
    for (const Customer& customer : line.customers()) {
        if (!pathExists(line.tree().host(customer.file->path()))) {
            reporter.reportIn({"all"}, placeOf(*customer.file),
                              "there is no customer file, with which everything begins");
        }
    }
    constexpr size_t kMostSearches = 1'000;  // each reads whole folders
    size_t searches = 0;
    for (const auto& [path, namings] : line.namedPaths()) {
        const std::string host = line.tree().host(path);
        std::vector<const Naming*> looking;
        for (const Naming& naming : namings) {
            if (isLookedFor(naming)) {
                looking.push_back(&naming);
            }
        }
        if (looking.empty() || pathExists(host)) {
            continue;
        }
        const std::optional<std::string> other =
                ++searches <= kMostSearches ? inAnotherCase(host) : std::nullopt;
        reportNamed(
                line, reporter, path, looking,
                "there is no file " + line.tree().written(host) +
                        (other ? "; case counts, and there is " + line.tree().written(*other) : ""),
                {});
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

constexpr Rule kRules[] = {
        {"missing-file", Severity::ERROR, "a line names a file that does not exist",
         "The service goes on without the file's content: sound delays are 0, lists and plans are "
         "empty, and clients get a path that leads nowhere.",
         "[AUDIO]\nAUDIO_CONFIG_PATH = /tvconfigs/audio/Panel.ini      (the file is panel.ini)",
         "[AUDIO]\nAUDIO_CONFIG_PATH = /tvconfigs/audio/panel.ini", checkMissingFiles},
        {"unusable-file", Severity::ERROR, "a file that a line names cannot be used",
         "The service refuses folders, pipes, files without permission and files larger than their "
         "format allows, and goes on without their content.",
         "KARAOKE_CONFIG_PATH = /tvconfigs/karaoke      (a folder)",
         "KARAOKE_CONFIG_PATH = /tvconfigs/karaoke/home.ini", checkUnusableFiles},
};

}  // namespace

RuleFamily paths() {
    return {"paths", "Files that lines name", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
