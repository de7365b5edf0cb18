#pragma once

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <vector>

#include "host/testing/QuietLog.h"
#include "host/testing/TempDir.h"
#include "tools/mlktree/tests/Harness.h"
#include "tools/mlktree/tests/ToldAnswers.h"

namespace mlk::tree {

inline constexpr const char* kModel = "tvconfigs/model/TRQ55_M2_LATAM.ini";

/** Replaces the first occurrence that stands in no comment. */
inline void replaceIn(const testing::TempDir& dir, const std::string& file, const std::string& from,
                      const std::string& to) {
    std::string text = dir.read(file);
    size_t at = text.find(from);
    while (at != std::string::npos && text[text.rfind('\n', at) + 1] == '#') {
        at = text.find(from, at + 1);
    }
    ASSERT_NE(at, std::string::npos) << from << " in " << file;
    text.replace(at, from.size(), to);
    dir.write(file, text);
}

/** A copy of the sample to change. */
class DiffTest : public ::testing::Test {
  protected:
    DiffTest() {
        std::filesystem::copy(samplePath(), mDir.path(), std::filesystem::copy_options::recursive);
    }

    void replace(const std::string& file, const std::string& from, const std::string& to) {
        replaceIn(mDir, file, from, to);
    }
    Outcome diff(std::vector<std::string> words = {}) const {
        words.insert(words.begin(), {"diff", samplePath(), mDir.path()});
        return runMlktree(words);
    }
    nlohmann::json changes() const {
        const Outcome outcome = diff({"--format", "json"});
        EXPECT_EQ(outcome.err, "");
        return nlohmann::json::parse(outcome.out)["changes"];
    }

    const testing::QuietLog mQuiet;
    const testing::TempDir mDir;
};

}  // namespace mlk::tree
