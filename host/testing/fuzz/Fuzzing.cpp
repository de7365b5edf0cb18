#include "host/testing/fuzz/Fuzzing.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace mlk::fuzzing {

namespace {

constexpr std::string_view kSeparator = "\n--8<--\n";

// Opens a file; ends the process on failure.
int openOrDie(const std::string& path, int flags) {
    const int fd = open(path.c_str(), flags | O_CLOEXEC, 0644);
    require(fd >= 0, path + ": " + strerror(errno));
    return fd;
}

}  // namespace

std::vector<std::string> split(std::string_view text, std::string_view separator, size_t count) {
    std::vector<std::string> parts;
    while (parts.size() + 1 < count) {
        const size_t end = text.find(separator);
        if (end == std::string_view::npos) {
            break;
        }
        parts.emplace_back(text.substr(0, end));
        text.remove_prefix(end + separator.size());
    }
    parts.emplace_back(text);
    return parts;
}

Files::Files(const uint8_t* data, size_t size, size_t count)
    : mTexts(split({reinterpret_cast<const char*>(data), size}, kSeparator, count)) {}

void Files::put(size_t index, const std::string& path) const {
    if (has(index)) {
        writeFile(path, text(index));
    } else {
        unlink(path.c_str());
    }
}

void writeFile(const std::string& path, std::string_view text) {
    const int fd = openOrDie(path, O_WRONLY | O_CREAT | O_TRUNC);
    const ssize_t written = write(fd, text.data(), text.size());
    close(fd);
    require(written == static_cast<ssize_t>(text.size()), "all is written to " + path);
}

std::string readFile(const std::string& path) {
    const int fd = openOrDie(path, O_RDONLY);
    std::string text;
    std::array<char, 4096> chunk{};
    ssize_t count = 0;
    while ((count = read(fd, chunk.data(), chunk.size())) > 0) {
        text.append(chunk.data(), static_cast<size_t>(count));
    }
    close(fd);
    return text;
}

void require(bool holds, std::string_view rule) {
    if (!holds) {
        fprintf(stderr, "does not hold: %.*s\n", static_cast<int>(rule.size()), rule.data());
        abort();
    }
}

void requireEqual(std::string_view what, std::string_view actual, std::string_view expected) {
    if (actual != expected) {
        const std::string name(what);
        fprintf(stderr, "%s is\n%s\nand should be\n%s\n", name.c_str(), printable(actual).c_str(),
                printable(expected).c_str());
        abort();
    }
}

std::string printable(std::string_view text) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\n') {
            result += "\\n\n";
        } else if (byte >= 0x20 && byte < 0x7f) {
            result += c;
        } else {
            result += "\\x";
            result += kDigits[byte >> 4U];
            result += kDigits[byte & 0xfU];
        }
    }
    return result;
}

}  // namespace mlk::fuzzing
