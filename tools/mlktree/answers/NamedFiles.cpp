#include "tools/mlktree/answers/NamedFiles.h"

#include <algorithm>
#include <unordered_set>

#include "common/File.h"
#include "common/Paths.h"
#include "projectconfigs/KnownItems.h"
#include "tools/mlktree/Parallel.h"
#include "tools/mlktree/Texts.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

// FNV-1a, which is the same on every machine.
uint64_t hashOn(uint64_t hash, std::string_view bytes) {
    constexpr uint64_t kPrime = 0x100000001b3;
    for (const char byte : bytes) {
        hash = (hash ^ static_cast<uint8_t>(byte)) * kPrime;
    }
    return hash;
}

void examine(const Tree& tree, AnswerFile& file) {
    constexpr size_t kStep = size_t{64} << 10U;
    const std::string host = tree.hostOfWritten(file.path);
    file.exists = product::pathExists(host);
    // What is no regular file is as good as an empty one: the service delivers no bytes.
    file.hash = file.exists ? 0xcbf29ce484222325 : 0;
    product::File opened(host);
    if (!opened.isOpen()) {
        return;
    }
    file.size = opened.size();
    std::vector<char> bytes(std::min(kStep, opened.size() + 1));
    for (size_t done = 0; done < kMostHashed;) {
        const ssize_t count = opened.readUpTo(bytes.data(), bytes.size());
        if (count <= 0) {
            return;
        }
        file.hash = hashOn(file.hash, {bytes.data(), static_cast<size_t>(count)});
        done += static_cast<size_t>(count);
    }
}

}  // namespace

std::string hexOf(uint64_t hash) {
    std::string text(16, '0');
    for (size_t i = text.size(); i-- > 0; hash >>= 4U) {
        text[i] = "0123456789abcdef"[hash & 0xfU];
    }
    return text;
}

bool mayNameFile(const AnswerName& name) {
    const product::KnownItem* const known = product::findKnownItem({name.section, name.key});
    return known == nullptr || known->names == product::FileFormat::OPAQUE ||
           known->names == product::FileFormat::NONE;
}

std::vector<AnswerFile> namedFiles(const LineAnswers& line, const Tree& tree) {
    std::vector<char> mayName(line.names.size());
    for (size_t i = 0; i < mayName.size(); ++i) {
        mayName[i] = mayNameFile(line.names[i]) ? 1 : 0;
    }
    std::vector<char> isLayer(line.items.size());
    for (const AnswerPieces& pieces : line.pieces) {
        for (const uint32_t layer : pieces.items) {
            if (layer != kNone) {
                isLayer[layer] = 1;
            }
        }
    }
    std::unordered_set<std::string_view> paths;
    for (size_t i = 0; i < line.items.size(); ++i) {
        if (isLayer[i] == 0) {
            continue;
        }
        for (const AnswerItem& item : line.items[i]) {
            if (isInPartition(item.value) && mayName[item.name] != 0) {
                paths.insert(item.value);
            }
        }
    }
    std::vector<AnswerFile> files;
    files.reserve(paths.size());
    for (const std::string_view path : paths) {
        files.push_back({path, false, 0, 0});
    }
    std::sort(files.begin(), files.end(),
              [](const AnswerFile& a, const AnswerFile& b) { return a.path < b.path; });
    forEachInParallel(files.size(), [&](size_t i) { examine(tree, files[i]); });
    return files;
}

}  // namespace mlk::tree
