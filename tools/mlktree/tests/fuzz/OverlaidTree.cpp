#include "tools/mlktree/tests/fuzz/OverlaidTree.h"

#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

#include "host/testing/fuzz/Fuzzing.h"

namespace {

namespace fs = std::filesystem;

constexpr size_t kMostFiles = 24;
constexpr size_t kLongestPath = 80;

// Paths of an input stay in the tree, and are of plain signs: others are a matter of tests.
bool isPathOfTree(std::string_view path) {
    constexpr std::string_view kSigns =
            "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-/ ";
    return !path.empty() && path.size() <= kLongestPath && path.front() != '/' &&
           path.find("..") == std::string_view::npos &&
           path.find_first_not_of(kSigns) == std::string_view::npos;
}

}  // namespace

OverlaidTree::OverlaidTree(std::string path, std::string base)
    : mPath(std::move(path)), mBase(std::move(base)) {
    if (fs::is_empty(mPath)) {
        fs::copy(mBase, mPath, fs::copy_options::recursive);
    }
}

OverlaidTree::~OverlaidTree() {
    std::error_code error;
    for (const std::string& path : mChanged) {
        fs::remove_all(mPath + "/" + path, error);
    }
    // fix may have changed any other file.
    fs::copy(mBase, mPath, fs::copy_options::recursive | fs::copy_options::overwrite_existing,
             error);
    mlk::fuzzing::require(!error, "the tree is restored: " + error.message());
}

void OverlaidTree::layOver(std::string_view input) {
    for (const std::string& file : mlk::fuzzing::split(input, "\n--8<--\n", kMostFiles)) {
        const size_t end = file.find('\n');
        const std::string path = file.substr(0, end);
        if (!isPathOfTree(path)) {
            continue;
        }
        if (end == std::string::npos) {
            std::error_code error;
            if (fs::is_regular_file(mPath + "/" + path, error)) {
                mChanged.push_back(path);
                fs::remove(mPath + "/" + path, error);
            }
            continue;
        }
        lay(path, std::string_view(file).substr(end + 1));
    }
}

bool OverlaidTree::has(const std::string& path) const {
    std::error_code error;
    return isPathOfTree(path) && fs::is_regular_file(mPath + "/" + path, error);
}

void OverlaidTree::lay(const std::string& path, std::string_view text) {
    for (size_t slash = path.find('/'); slash != std::string::npos;
         slash = path.find('/', slash + 1)) {
        std::error_code error;
        const std::string folder = path.substr(0, slash);
        if (fs::create_directory(mPath + "/" + folder, error)) {
            mChanged.push_back(folder);
        }
    }
    std::ofstream stream(mPath + "/" + path, std::ios::binary);
    if (stream.is_open()) {
        mChanged.push_back(path);
        stream << text;
    }
}
