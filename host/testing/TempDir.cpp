#include "host/testing/TempDir.h"

#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace mlk::testing {

namespace fs = std::filesystem;

TempDir::TempDir() {
    std::string pattern = (fs::temp_directory_path() / "mlk-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), pattern);
    }
    mPath = pattern;
}

TempDir::~TempDir() {
    std::error_code ignored;
    fs::remove_all(mPath, ignored);
}

std::string TempDir::path(std::string_view relative) const {
    return mPath + "/" + std::string(relative);
}

std::string TempDir::write(std::string_view relative, std::string_view text) const {
    std::string file = path(relative);
    fs::create_directories(fs::path(file).parent_path());
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.close();
    if (!out) {
        throw std::runtime_error("cannot write " + file);
    }
    return file;
}

std::string TempDir::read(std::string_view relative) const {
    const std::string file = path(relative);
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        throw std::runtime_error("cannot read " + file);
    }
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::string TempDir::mkdir(std::string_view relative) const {
    std::string folder = path(relative);
    fs::create_directories(folder);
    return folder;
}

}  // namespace mlk::testing
