#include "tvconfigs/testing/SlowEditor.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "host/testing/FileCalls.h"
#include "host/testing/LogCapture.h"
#include "host/testing/TempDir.h"
#include "tvconfigs/FileConfigEditor.h"
#include "tvconfigs/tests/EditorTexts.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::mlk::testing::FileCalls;
using ::mlk::testing::LogCapture;
using ::mlk::testing::TempDir;

/** Makes random texts from the characters that the rules of the file treat specially. */
class Texts {
  public:
    explicit Texts(unsigned seed) : mRandom(seed) {}

    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(mRandom); }

    template <typename Items>
    const auto& anyOf(const Items& items) {
        return items[static_cast<size_t>(below(static_cast<int>(items.size())))];
    }

    std::string character() { return std::string(1, anyOf(std::string_view("a=#\r ab=\xff"))); }

    std::string line() {
        const bool isLong = below(8) == 0;
        const int size = isLong ? 1015 + below(16) : below(12);
        std::string result;
        // A long line has few carriage returns, so that many lines have about 1023 characters.
        while (static_cast<int>(result.size()) < size) {
            result += isLong && below(400) != 0 ? (below(300) == 0 ? "=" : "x") : character();
        }
        if (below(6) == 0) {
            result += '\r';
        }
        return result + (below(40) == 0 ? std::string(1, '\0') : "\n");
    }

    std::string file() {
        std::string result;
        for (int lines = below(below(20) == 0 ? 400 : 12); lines > 0; --lines) {
            result += line();
        }
        if (below(3) == 0 && !result.empty()) {
            result.pop_back();
        }
        return result;
    }

  private:
    std::mt19937 mRandom;
};

class SlowEditorTest : public ::testing::TestWithParam<unsigned> {};

TEST_P(SlowEditorTest, AgreesWithTheEditor) {
    const TempDir dir;
    // Removing a file takes less time than emptying it, or than a folder for each round.
    const auto fresh = [&](const char* name) {
        std::filesystem::remove(dir.path(name));
        return dir.path(name);
    };
    const FileCalls calls(::mlk::testing::withoutWaiting());
    Texts texts(GetParam());
    for (int round = 0; round < 1000; ++round) {
        const std::string content = texts.file();
        const std::string path = fresh("tv.config");
        dir.write("tv.config", content);
        SlowEditor slow;
        slow.update(path);
        const LogCapture log;
        FileConfigEditor editor(path.c_str());

        const std::vector<std::string> lines = log.texts();
        ASSERT_EQ(lines.size(), 1U + static_cast<size_t>(slow.linesTooLong))
                << ::testing::PrintToString(content);
        slow.save(fresh("slow"));
        editor.Save(fresh("fast").c_str());
        ASSERT_EQ(dir.read("fast"), dir.read("slow")) << ::testing::PrintToString(content);

        if (slow.items.empty()) {
            continue;
        }
        const std::string key = texts.anyOf(slow.items).first;
        const int size = texts.below(20) == 0 ? 1010 + texts.below(20) : texts.below(8);
        const std::string value(static_cast<size_t>(size), 'v');
        ASSERT_TRUE(slow.updateValue(key, value));
        ASSERT_TRUE(editor.Set(key.c_str(), value.c_str()));
        ASSERT_EQ(valueOf(editor, key), value.substr(0, 91));
        slow.save(fresh("slow"));
        ASSERT_EQ(dir.read("tv.config"), dir.read("slow")) << ::testing::PrintToString(content);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, SlowEditorTest, ::testing::Range(1U, 6U));

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
