#include "tools/mlktree/Starter.h"

#include <filesystem>
#include <system_error>

#include "tools/mlktree/Tree.h"
#include "tools/mlktree/WrittenFile.h"

namespace mlk::tree {

namespace {

namespace fs = std::filesystem;

// The service writes the country to this partition; a line brings nothing of its own.
constexpr const char* kEmptyFolders[] = {"tvdata"};

UsageError notMade(const std::string& path, const std::error_code& code) {
    return UsageError(path + " cannot be made: " + code.message());
}

void makeFolder(const fs::path& path) {
    std::error_code code;
    fs::create_directories(path, code);
    if (code) {
        throw notMade(path.string(), code);
    }
}

// Makes the folder unless it is there. Returns true if it was made.
bool makeEmptyFolder(const std::string& folder) {
    std::error_code code;
    const fs::file_status status = fs::status(folder, code);
    if (!fs::exists(status)) {
        makeFolder(folder);
        return true;
    }
    if (!fs::is_directory(status)) {
        throw UsageError(folder + " is no folder; name a new or empty one");
    }
    const bool isEmpty = fs::is_empty(folder, code);
    if (code) {
        throw UsageError(folder + " cannot be read: " + code.message());
    }
    if (!isEmpty) {
        throw UsageError(folder + " is not empty; name a new or empty folder");
    }
    return false;
}

std::vector<std::string> writeInto(const std::string& folder, const StarterNames& names) {
    for (const char* const name : kEmptyFolders) {
        makeFolder(fs::path(folder) / name);
    }
    std::vector<std::string> paths;
    for (const StarterFile& file : starterFiles()) {
        paths.push_back(filledIn(file.path, names));
        const fs::path path = fs::path(folder) / paths.back();
        makeFolder(path.parent_path());
        WrittenFile written(path.string());
        written.write(filledIn(file.text, names));
        written.finish();
    }
    return paths;
}

}  // namespace

std::string filledIn(std::string text, const StarterNames& names) {
    const std::pair<std::string, const std::string&> places[] = {{"{MAKER}", names.maker},
                                                                 {"{MODEL}", names.model}};
    for (const auto& [place, name] : places) {
        for (size_t at = 0; (at = text.find(place, at)) != std::string::npos; at += name.size()) {
            text.replace(at, place.size(), name);
        }
    }
    return text;
}

std::vector<StarterFile> starterFiles() {
    std::vector<StarterFile> files = starterModel();
    for (const StarterFile& file : starterRegional()) {
        files.push_back(file);
    }
    return files;
}

std::vector<std::string> writeStarter(const std::string& folder, const StarterNames& names) {
    const bool isNew = makeEmptyFolder(folder);
    try {
        return writeInto(folder, names);
    } catch (...) {
        // The folder was empty: all that is in it was made here.
        std::error_code ignored;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder, ignored)) {
            fs::remove_all(entry.path(), ignored);
        }
        if (isNew) {
            fs::remove(folder, ignored);
        }
        throw;
    }
}

}  // namespace mlk::tree
