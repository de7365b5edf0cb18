// docs/mlktree.md says what holds.

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>

#include "host/testing/Process.h"
#include "host/testing/TempDir.h"
#include "tools/mlktree/Formats.h"
#include "tools/mlktree/Settings.h"

namespace mlk::tree {

namespace {

using ::testing::HasSubstr;
using ::testing::SizeIs;

std::string guide() {
    std::ostringstream text;
    text << std::ifstream(mlk::testing::sourceDir() + "/docs/mlktree.md").rdbuf();
    return text.str();
}

// The first block of the guide in that language.
std::string block(const std::string& language) {
    const std::string text = guide();
    const std::string fence = "\n```" + language + "\n";
    const size_t begin = text.find(fence);
    EXPECT_NE(begin, std::string::npos);
    return text.substr(begin + fence.size(),
                       text.find("\n```\n", begin + fence.size()) - begin - fence.size() + 1);
}

TEST(GuideTest, ExampleOfSettingsIsRead) {
    const mlk::testing::TempDir dir;
    const Settings settings = readSettings(dir.write("mlktree.toml", block("toml")));
    ASSERT_THAT(settings.allowances, SizeIs(1));
    EXPECT_EQ(settings.allowances[0].text, "ATLANTIS");
    ASSERT_THAT(settings.rules, SizeIs(1));
    EXPECT_EQ(settings.rules[0].severity, Severity::OFF);
    ASSERT_THAT(settings.keys, SizeIs(3));
    EXPECT_TRUE(settings.find("[WELCOME]", "Volume")->isRequired);
}

TEST(GuideTest, NamesEveryFormat) {
    for (const auto& [name, format] : formats()) {
        EXPECT_THAT(guide(), HasSubstr("| `" + std::string(name) + "` |"));
    }
}

TEST(GuideTest, NamesEveryTypeOfKey) {
    std::string types;
    for (const OwnType type : {OwnType::TEXT, OwnType::PATH, OwnType::BOOLEAN, OwnType::INTEGER,
                               OwnType::CHOICE, OwnType::PATTERN}) {
        types += (types.empty() ? "# " : ", ") + std::string(nameOf(type));
    }
    EXPECT_THAT(guide(), HasSubstr(types + "; default: text"));
}

}  // namespace

}  // namespace mlk::tree
