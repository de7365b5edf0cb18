#include "tools/mlktree/FileText.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "common/File.h"
#include "tools/common/Text.h"
#include "tools/mlktree/Tree.h"

namespace mlk::tree {

namespace {

using vendor::morlak::mlkconfigs::V1_0::implementation::File;

// A limit as people write it: "64 MiB", "100 bytes".
std::string sizeName(size_t bytes) {
    constexpr size_t kMebibyte = size_t{1} << 20U;
    return bytes >= kMebibyte && bytes % kMebibyte == 0
                   ? std::to_string(bytes / kMebibyte) + " MiB"
                   : std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
}

// Reads an open file. Returns what kept it from being read; empty if it is in `text` whole.
std::string readInto(std::string& text, File& file, size_t most) {
    std::string tooLarge = "it has more than " + sizeName(most);
    if (file.size() > most) {
        return tooLarge;
    }
    // A file of the kernel has more bytes than its size says, and a file may grow.
    size_t filled = 0;
    for (size_t wanted = file.size() + 1;; wanted = std::min(2 * wanted, most + 1)) {
        text.resize(wanted);
        const ssize_t count = file.readUpTo(text.data() + filled, wanted - filled);
        if (count < 0) {
            return std::generic_category().message(errno);
        }
        filled += static_cast<size_t>(count);
        if (filled > most) {
            return tooLarge;
        }
        if (filled < wanted) {
            text.resize(filled);
            return "";
        }
    }
}

}  // namespace

std::optional<std::string> textIfThere(const std::string& path, size_t most) {
    File file(path);
    if (file.isMissing()) {
        return std::nullopt;
    }
    std::string text;
    const std::string problem = file.isOpen() ? readInto(text, file, most) : file.reason();
    if (!problem.empty()) {
        throw UsageError(printable(path) + " cannot be read: " + problem);
    }
    return text;
}

std::string textOf(const std::string& path, size_t most) {
    std::optional<std::string> text = textIfThere(path, most);
    if (!text) {
        throw UsageError(printable(path) +
                         " cannot be read: " + std::generic_category().message(ENOENT));
    }
    return *std::move(text);
}

std::string textOrNothing(const std::string& path, size_t most) {
    File file(path);
    std::string text;
    return file.isOpen() && readInto(text, file, most).empty() ? text : std::string();
}

}  // namespace mlk::tree
