// Replaces a fuzz engine where none is available: runs a fuzzer once for each input in files.

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "host/testing/fuzz/Fuzzing.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> filesOf(const fs::path& path) {
    if (!fs::is_directory(path)) {
        return {path};
    }
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(path)) {
        if (entry.is_regular_file()) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

// Takes files and folders of files.
int main(int argc, char** argv) {
    LLVMFuzzerInitialize(&argc, &argv);
    size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        for (const fs::path& file : filesOf(argv[i])) {
            // Printed before the run: the last name is that of the failing input.
            fprintf(stderr, "%s\n", file.c_str());
            const std::string input = mlk::fuzzing::readFile(file.string());
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(input.data()), input.size());
            ++count;
        }
    }
    fprintf(stderr, "%zu inputs\n", count);
    mlk::fuzzing::require(count != 0, "there is an input");
    return 0;
}
