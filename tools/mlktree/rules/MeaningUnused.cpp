// Rules about files that nothing names.

#include "tools/mlktree/rules/MeaningUnused.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tools/mlktree/FolderFiles.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"

namespace mlk::tree {

namespace {

const std::vector<ReadLine> kNoLines;

constexpr size_t kMostEntries = 100'000;
constexpr size_t kMostFolders = 32;  // in each other

// A file by its device and number, however it is named.
using FileId = std::pair<dev_t, ino_t>;

struct Found {
    std::string path;  // relative to the tree
    FileId id;
};

// Finds the files of tvconfigs. Follows no links, so that it stays in the tree and ends.
class Search {
  public:
    Search(const ProductLine& line, std::set<std::string> skipped)
        : mLine(line), mSkipped(std::move(skipped)) {}

    void search(const std::string& folder, size_t depth = 1) {
        if (mIsCut || mSkipped.count(folder) > 0) {
            return;
        }
        if (depth > kMostFolders) {
            unsearched.emplace_back(folder, "more than " + std::to_string(kMostFolders) +
                                                    " folders lie in each other");
            return;
        }
        const std::unique_ptr<DIR, int (*)(DIR*)> open(opendir(mLine.tree().host(folder).c_str()),
                                                       closedir);
        if (open == nullptr) {
            unsearched.emplace_back(folder, "the folder cannot be read");
            return;
        }
        std::vector<std::string> folders;
        readFolder(*open, folder, folders);
        for (const std::string& inner : folders) {
            search(inner, depth + 1);
        }
    }

    std::vector<Found> files;
    std::vector<std::pair<std::string, std::string>> unsearched;  // folder, reason

  private:
    void readFolder(DIR& open, const std::string& folder, std::vector<std::string>& folders) {
        while (const dirent* const entry = readdir(&open)) {
            const std::string name = entry->d_name;
            struct stat info {};
            // Hidden files are those of tools.
            if (name.front() == '.' ||
                fstatat(dirfd(&open), name.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
                continue;
            }
            if (++mEntries > kMostEntries) {
                mIsCut = true;
                files.clear();  // which ones were found would be a matter of chance
                unsearched = {{"tvconfigs", "it has more than " + std::to_string(kMostEntries) +
                                                    " files and folders"}};
                return;
            }
            const std::string path = pathIn(folder, name);
            if (S_ISDIR(info.st_mode)) {
                folders.push_back(path);
            } else if (S_ISREG(info.st_mode)) {
                files.push_back({path, {info.st_dev, info.st_ino}});
            }
        }
    }

    const ProductLine& mLine;
    const std::set<std::string> mSkipped;
    size_t mEntries = 0;
    bool mIsCut = false;
};

// Folders whose files belong to other rules, or of which a set takes what it needs.
std::set<std::string> foldersOfOthers(const ProductLine& line) {
    std::set<std::string> folders = {"tvconfigs/board"};
    for (const Board& board : line.boards()) {
        if (board.file != nullptr) {
            folders.insert(folderOf(board.file->path()));
        }
    }
    for (const PlanFiles& plans : line.planFolders()) {
        folders.insert(plans.folder->path());
    }
    folders.erase("tvconfigs");
    return folders;
}

// The files that lines name or the service reads, by whatever path.
std::set<FileId> usedFilesOf(const ProductLine& line) {
    std::set<FileId> used;
    const auto add = [&](const std::string& path) {
        struct stat info {};
        if (stat(line.tree().host(path).c_str(), &info) == 0) {
            used.insert({info.st_dev, info.st_ino});
        }
    };
    for (const auto& [path, namings] : line.namedPaths()) {
        add(path);
    }
    for (const auto& [path, file] : line.files()) {
        add(path);
    }
    return used;
}

std::set<std::string> modelFoldersOf(const ProductLine& line) {
    std::set<std::string> folders;
    for (const Model& model : line.models()) {
        if (model.file != nullptr && model.file->exists()) {
            folders.insert(folderOf(model.file->path()));
        }
    }
    return folders;
}

// What the search of tvconfigs found.
struct Unused {
    std::vector<std::string> paths;  // of the unused files, in their order
    std::vector<std::pair<std::string, std::string>> unsearched;  // folder, reason
};

Unused findUnused(const ProductLine& line) {
    Unused unused;
    Search search(line, foldersOfOthers(line));
    search.search("tvconfigs");
    unused.unsearched = std::move(search.unsearched);
    if (line.models().empty()) {
        return unused;  // another finding
    }
    const std::set<FileId> used = usedFilesOf(line);
    for (const Found& found : search.files) {
        if (used.count(found.id) == 0) {
            unused.paths.push_back(found.path);
        }
    }
    std::sort(unused.paths.begin(), unused.paths.end());
    return unused;
}

const Unused& unusedOf(const ProductLine& line) {
    return line.memo().get<Unused>([&] { return line.isWhole() ? findUnused(line) : Unused(); });
}

}  // namespace

std::vector<std::string> unusedFilesOf(const ProductLine& line) {
    return unusedOf(line).paths;
}

namespace {

bool isModel(const std::set<std::string>& folders, const std::string& path) {
    constexpr std::string_view kEnd = ".ini";
    return folders.count(folderOf(path)) > 0 && path.size() > kEnd.size() &&
           path.compare(path.size() - kEnd.size(), kEnd.size(), kEnd) == 0;
}

// The lines of the system files but for comments, in small letters.
std::string textOfSystems(const ProductLine& line) {
    std::string text;
    for (const Customer& customer : line.customers()) {
        for (const ReadLine& read :
             customer.system != nullptr ? customer.system->lines() : kNoLines) {
            if (!looksLikeComment(read.text)) {
                text.append(lowerCase(read.text)).append("\n");
            }
        }
    }
    return text;
}

void checkModels(const ProductLine& line, Reporter& reporter) {
    const std::set<std::string> folders = modelFoldersOf(line);
    const std::string systems = textOfSystems(line);
    size_t searches = 0;
    for (const std::string& path : unusedOf(line).paths) {
        if (!isModel(folders, path)) {
            continue;
        }
        if (++searches > Reporter::kMostOfRule) {
            break;  // each searches all lines, and nobody reads more findings
        }
        // A line that has the name, however it is misspelt otherwise, has another finding.
        const std::string name = lowerCase(path.substr(path.rfind('/') + 1));
        if (systems.find(name) == std::string::npos) {
            reporter.reportIn(
                    {}, {path, 0, 0},
                    "no line of a system file names this model file, so no set can be it");
        }
    }
}

void checkFiles(const ProductLine& line, Reporter& reporter) {
    const std::set<std::string> folders = modelFoldersOf(line);
    std::map<std::string, std::vector<std::string>> unused;
    for (const std::string& path : unusedOf(line).paths) {
        if (!isModel(folders, path)) {
            unused[folderOf(path)].push_back(path);
        }
    }
    constexpr size_t kMostOfFolder = 3;
    for (const auto& [folder, paths] : unused) {
        const bool isMany = paths.size() > kMostOfFolder;
        for (size_t i = 0; i < (isMany ? 1 : paths.size()); ++i) {
            reporter.reportIn({}, {paths[i], 0, 0},
                              std::string("no line names this file") +
                                      (isMany ? ", nor " + std::to_string(paths.size() - 1) +
                                                        " others of its folder"
                                              : ""));
        }
    }
}

void checkUnsearched(const ProductLine& line, Reporter& reporter) {
    for (const auto& [folder, reason] : unusedOf(line).unsearched) {
        reporter.reportIn({}, {folder, 0, 0}, "not searched for unused files: " + reason);
    }
    if (line.properties().keys().size() > kMostProperties) {
        reporter.reportIn({}, {"data/property", 0, 0},
                          "too many files: only properties that the service knows are checked");
    }
    for (const auto& [folder, what] : line.unsearched()) {
        reporter.reportIn(
                {}, {folder, 0, 0},
                "too many files: its " + what + " are not checked, but for those that lines name");
    }
}

constexpr Rule kRules[] = {
        {"unnamed-model", Severity::WARNING, "a model file that no index has",
         "No set can be this model: its line in the system file is missing, or names another file.",
         "tvconfigs/model/third.ini      (and no line of the system file names it)",
         "Model_3 = /tvconfigs/model/third.ini", checkModels},
        {"unused-file", Severity::NOTE, "a file of tvconfigs that no line names",
         "It takes space on every set, or the line that should name it is missing.",
         "tvconfigs/audio/old_panel.ini", "a file that some item names", checkFiles},
        {"unsearched-folder", Severity::NOTE, "a folder is not searched",
         "The search for unused files ends at 100,000 files, at 32 folders in each other, and at a "
         "folder that may not be read. A folder of more than 1,000 boards, or of 10,000 INI files "
         "beside the file of receivers, is not searched for these.",
         "a tree with a folder of temporary files", "the same tree without them", checkUnsearched},
};

}  // namespace

RuleFamily unused() {
    return {"unused", "Files that nothing names", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
