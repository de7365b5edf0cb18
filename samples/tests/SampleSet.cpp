#include "samples/tests/SampleSet.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace mlk::samples {

namespace fs = std::filesystem;

fs::path samplesFolder() {
    return MLK_SAMPLES_DIR;
}

std::vector<std::string> partitionFiles() {
    const fs::path root = samplesFolder() / "partitions";
    std::vector<std::string> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
        if (!entry.is_directory()) {
            files.push_back(entry.path().lexically_relative(root).string());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string contentOf(const std::string& relative) {
    const fs::path path = samplesFolder() / "partitions" / relative;
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + path.string());
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> linesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

SampleSet::SampleSet()
    : mTvdata(mSet.tvdata()),
      mTvconfigs(mSet.tvconfigs()),
      mImpdata(mSet.impdata()),
      mParser(mTvdata.c_str(), mTvconfigs.c_str(), mImpdata.c_str()) {
    mSet.copyFrom((samplesFolder() / "partitions").string());
}

void SampleSet::select(int model, const std::string& boardId) {
    mParser.update(path("/tvconfigs/customer.ini").c_str(), model, boardId);
}

Items SampleSet::items() const {
    // "    [SECTION]:KEY=VALUE"; other lines of the dump are indented less.
    constexpr const char* kItem = "    [";
    std::ostringstream dump;
    mParser.dump(dump);
    Items items;
    for (const std::string& line : linesOf(dump.str())) {
        if (line.rfind(kItem, 0) != 0) {
            continue;
        }
        const size_t colon = line.find("]:") + 1;
        const size_t equals = line.find('=', colon);
        items.emplace(
                ItemName{line.substr(4, colon - 4), line.substr(colon + 1, equals - colon - 1)},
                line.substr(equals + 1));
    }
    return items;
}

std::string SampleSet::value(const std::string& section, const std::string& key) const {
    return mParser.getInfo(ConfigKey(section, key));
}

}  // namespace mlk::samples
