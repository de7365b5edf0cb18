#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <sstream>

#include "host/testing/Process.h"
#include "host/testing/QuietLog.h"
#include "host/testing/TempDir.h"
#include "tools/common/Wrap.h"
#include "tools/mlktree/tests/Harness.h"

namespace mlk::tree {

namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

class ShowTest : public ::testing::Test {
  protected:
    ShowTest() {
        std::filesystem::copy(testing::sourceDir() + "/samples/partitions", mDir.path(),
                              std::filesystem::copy_options::recursive);
    }

    std::string show(std::vector<std::string> words = {}) const {
        words.insert(words.begin(), "show");
        const Outcome outcome = runMlktree(words, mDir.path());
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return outcome.out;
    }

    testing::QuietLog mQuiet;
    testing::TempDir mDir;
};

TEST_F(ShowTest, MarksWhatIsReplacedAndWhatIsMissing) {
    std::filesystem::remove(mDir.path("tvconfigs/logo/logo_uhd.png"));
    const std::string text = show();
    EXPECT_THAT(text,
                AllOf(HasSubstr("  Spread spectrum   /tvconfigs/ssc/ssc_b2.ini (board)\n"),
                      HasSubstr("  Logo              /tvconfigs/logo/logo_uhd.png (missing)\n"),
                      HasSubstr("  TV configuration  /tvconfigs/tv/tv_eu.config (country)\n"),
                      HasSubstr("  Panel             OSMR-43U60-B2\n")));
    EXPECT_THAT(text, HasSubstr("1 error"));
    EXPECT_EQ(text.substr(text.rfind(": ")), ": `mlktree check`\n");
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(columnsOf(line), 60U) << line;
    }
}

TEST_F(ShowTest, OptionsChooseTheSet) {
    EXPECT_THAT(show({"--model", "6", "--board", "skerry_b1.ini"}),
                AllOf(HasSubstr("  Index             6\n"), HasSubstr("ssc_b1.ini"),
                      HasSubstr("UNITED_KINGDOM")));
    EXPECT_THAT(show({"--board", "none"}), HasSubstr("  Board file        -\n"));
    EXPECT_THAT(show({"--country", "SWEDEN"}), HasSubstr("DVB_NORDIC"));
}

TEST_F(ShowTest, SaysIfThereIsNoModel) {
    mDir.write("impdata/project_id.bin", "PROJECT_ID=9\n");
    EXPECT_THAT(show(),
                AllOf(HasSubstr("This set has no model:\n"), HasSubstr("none of index 9;"),
                      HasSubstr("--model names one.\n"), HasSubstr("  Index             9\n")));
}

TEST_F(ShowTest, TellsACountryThatIsRefusedFromNone) {
    const std::string folder = "tvdata/tvsysmap";
    std::filesystem::create_directories(mDir.path(folder));
    const std::string path = folder + "/country_id.bin";
    mDir.write(path, "COUNTRY_ID=0\n" + std::string(64 * 1024, '\n'));
    EXPECT_THAT(show(), AllOf(HasSubstr("  Name              (country_id.bin is too large)\n"),
                              Not(HasSubstr("(none saved)"))));
    mDir.write(path, "\n");
    EXPECT_THAT(show(), HasSubstr("  Name              (none saved)\n"));
}

TEST_F(ShowTest, JsonIsForPrograms) {
    const auto shown = nlohmann::json::parse(show({"--format", "json"}));
    EXPECT_EQ(shown["picture"]["spreadSpectrum"], "/tvconfigs/ssc/ssc_b2.ini");
    EXPECT_EQ(shown["country"]["number"], 14);
    EXPECT_EQ(shown["missing"], nlohmann::json::array());
    EXPECT_EQ(shown["replaced"][0],
              nlohmann::json::parse(
                      R"({"group":"Picture","key":"spreadSpectrum","layer":"board","line":0})"));
    EXPECT_EQ(shown["findings"]["errors"], 0);
}

TEST_F(ShowTest, ColoursAreAskedFor) {
    EXPECT_THAT(show(), Not(HasSubstr("\033[")));
    EXPECT_THAT(show({"--color", "always"}), HasSubstr("\033[1mProject"));
}

}  // namespace

}  // namespace mlk::tree
