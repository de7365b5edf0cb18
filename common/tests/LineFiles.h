#pragma once

#include <android/log.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "common/LineReader.h"
#include "host/testing/LogCapture.h"
#include "host/testing/TempDir.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

inline constexpr const char* kTag = "LineReaderTest";
inline constexpr size_t kBufferSize = 256;
inline constexpr size_t kLimit = kBufferSize - 1;

inline std::vector<std::string> linesOf(const std::string& path, size_t bufferSize = kBufferSize) {
    std::vector<std::string> lines;
    LineReader reader(path, bufferSize, kTag);
    std::string_view line;
    while (reader.next(line)) {
        lines.emplace_back(line);
        EXPECT_EQ(reader.lineNumber(), lines.size());
    }
    EXPECT_FALSE(reader.next(line)) << "the end is the end";
    return lines;
}

// A second, plain implementation of the rules.
inline std::vector<std::string> expectedLines(std::string text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        std::string line = text.substr(0, std::min(end, kLimit));
        lines.push_back(line.c_str());  // up to its first NUL
        text.erase(0, end + 1);
    }
    return lines;
}

// Lines of many lengths, few of them huge.
inline std::string randomText(std::mt19937& random, size_t lines) {
    const size_t lengths[] = {0, 1, 2, 100, 254, 255, 256, 257, 600, 40000};
    std::string text;
    for (; lines > 0; --lines) {
        const size_t length = lengths[random() % (random() % 20 == 0 ? 10 : 9)];
        for (size_t i = 0; i < length; ++i) {
            text += random() % 500 == 0 ? '\0' : static_cast<char>('a' + random() % 26);
        }
        text += '\n';
    }
    if (!text.empty() && random() % 2 == 0) {
        text.pop_back();
    }
    return text;
}

class LineReaderTest : public ::testing::Test {
  protected:
    std::vector<std::string> linesOfText(const std::string& text) {
        return linesOf(mDir.write("file", text));
    }
    std::vector<std::string> errors() const { return mLog.texts(ANDROID_LOG_ERROR, kTag); }
    std::string path() const { return mDir.path() + "/file"; }
    std::string longLine(int number) const {
        return path() + ":" + std::to_string(number) +
               ": line longer than 255 bytes, its rest is skipped";
    }

    const mlk::testing::TempDir mDir;
    mlk::testing::LogCapture mLog;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
