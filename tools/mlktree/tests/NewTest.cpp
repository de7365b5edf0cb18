// mlktree new: the files it writes, what check and the service say about them, and what it refuses.

#include <gmock/gmock.h>

#include <filesystem>
#include <set>

#include "host/testing/HostSet.h"
#include "host/testing/Process.h"
#include "host/testing/SmallDisk.h"
#include "projectconfigs/KnownItems.h"
#include "tools/mlktree/Starter.h"
#include "tools/mlktree/tests/Harness.h"
#include "tvconfigs/TvConfigItems.h"

namespace mlk::tree {

namespace {

namespace fs = std::filesystem;
namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;
using mlk::testing::Process;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class NewTest : public ::testing::Test {
  protected:
    Outcome make(std::vector<std::string> words = {}) const {
        words.insert(words.begin(), {"new", mLine});
        return runMlktree(words);
    }

    std::set<std::string> entries() const {
        std::set<std::string> found;
        for (const auto& entry : fs::recursive_directory_iterator(mLine)) {
            if (!entry.is_directory()) {
                found.insert(fs::relative(entry.path(), mLine).string());
            }
        }
        return found;
    }

    const mlk::testing::TempDir mDir;
    const std::string mLine = mDir.path("lines/first");
};

TEST_F(NewTest, WritesALineInWhichCheckFindsNothing) {
    const Outcome outcome = make();
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    std::string listed;
    for (const StarterFile& file : starterFiles()) {
        listed += filledIn(file.path, {"MAKER", "FIRST"}) + "\n";
    }
    EXPECT_EQ(outcome.out, listed);
    EXPECT_EQ(entries().size(), starterFiles().size());
    EXPECT_TRUE(fs::is_directory(mLine + "/tvdata"));

    const Outcome checked = runMlktree({"check", mLine, "--fail-on", "note"});
    EXPECT_EQ(checked.status, 0) << checked.out;
    EXPECT_THAT(checked.out, StartsWith("nothing found in "));
    EXPECT_EQ(runMlktree({"fix", mLine}).status, 0);
}

// A fault in any of these files is noticed: the line is not clean because nothing reads it.
TEST_F(NewTest, CheckReadsTheLine) {
    make();
    for (const char* const gone :
         {"tvconfigs/tv.config", "tvconfigs/audio/panel.ini", "tvconfigs/country/countries.txt",
          "tvconfigs/tvsysmap/systems.xml", "tvconfigs/tvsysmap/countries.xml",
          "tvconfigs/freqtables/dtv/dvbt_uhf"}) {
        fs::rename(mLine + "/" + gone, mDir.path("gone"));
        const Outcome checked = runMlktree({"check", mLine});
        EXPECT_EQ(checked.status, 1) << gone << ": " << checked.out;
        fs::rename(mDir.path("gone"), mLine + "/" + gone);
    }
    EXPECT_EQ(runMlktree({"check", mLine}).status, 0);
}

TEST_F(NewTest, TheModelHasAllItemsAndTheFileAllFeatures) {
    make();
    const std::string model = mDir.read("lines/first/tvconfigs/model/FIRST.ini");
    for (const product::KnownItem& item : product::kKnownItems) {
        const size_t section = model.find("\n" + std::string(item.name.category) + "\n");
        ASSERT_NE(section, std::string::npos) << item.name.category;
        const size_t key = model.find("\n" + std::string(item.name.key) + " ", section);
        EXPECT_LT(key, model.find("\n[", section + 1)) << item.name.category << item.name.key;
    }
    const std::string features = mDir.read("lines/first/tvconfigs/tv.config");
    for (const product::TvFlagRow& flag : product::kTvFlags) {
        EXPECT_THAT(features, HasSubstr(std::string(flag.key) + "="));
    }
}

TEST_F(NewTest, TheServiceRunsOnIt) {
    ASSERT_EQ(make({"--maker", "ACME", "--model", "TV43"}).status, 0);
    const mlk::testing::HostSet set;
    fs::copy(mLine, set.dir().path(), fs::copy_options::recursive);
    Process service({mlk::testing::binDir() + "/vendor.morlak.mlconfigs@1.0-service"});
    const auto mlkctl = [](std::vector<std::string> words) {
        words.insert(words.begin(), mlk::testing::binDir() + "/mlkctl");
        Process process(std::move(words));
        EXPECT_EQ(process.wait(), 0) << process.err();
        return process.out();
    };
    mlkctl({"wait", "--timeout", "60"});
    const auto value = [](const std::string& text) {
        return "{\"success\":true,\"value\":" + text + "}\n";
    };
    EXPECT_EQ(mlkctl({"call", "getProjectName"}), value("\"TV43\""));
    EXPECT_EQ(mlkctl({"call", "getCustomerId"}), value("\"ACME\""));
    EXPECT_EQ(mlkctl({"call", "getPanelName"}), value("\"PANEL-1\""));
    EXPECT_EQ(mlkctl({"call", "getCountryList"}), "[14]\n");
    EXPECT_EQ(mlkctl({"call", "getLanguageList"}), "[\"ger\",\"eng\"]\n");
    EXPECT_EQ(mlkctl({"call", "dtvEnabled"}), value("true"));
    EXPECT_EQ(mlkctl({"call", "getAudioDelay", "SPEAKER", "HDMI_DELAY", ""}), value("\"42\""));
    const std::string plan = mlkctl({"call", "getFreqTableList", "GERMANY", "DTV_ANTENNA", "AUTO"});
    EXPECT_THAT(plan, StartsWith("[{\"channel\":21,\"frequency\":474000,\"bandwidth\":8000000,"
                                 "\"label\":\"21\",\"modulation\":18},"));
    EXPECT_THAT(plan, HasSubstr("{\"channel\":48,\"frequency\":690000,"));
}

TEST_F(NewTest, TakesAnEmptyFolderAndRefusesAnother) {
    fs::create_directories(mLine);
    EXPECT_EQ(make().status, 0);
    const std::set<std::string> before = entries();
    const Outcome again = make({"--maker", "OTHER"});
    EXPECT_EQ(again.status, 2);
    EXPECT_EQ(again.err, "mlktree: " + mLine + " is not empty; name a new or empty folder\n");
    EXPECT_EQ(entries(), before);
    EXPECT_THAT(mDir.read("lines/first/tvconfigs/customer.ini"),
                HasSubstr("CUSTOMER_ID = MAKER\n"));

    const std::string file = mDir.write("file", "");
    EXPECT_EQ(runMlktree({"new", file}).err,
              "mlktree: " + file + " is no folder; name a new or empty one\n");
    EXPECT_EQ(runMlktree({"new", file + "/below"}).status, 2);
    EXPECT_EQ(runMlktree({"new"}).err, "mlktree: which folder? mlktree new DIR\n");
    EXPECT_EQ(runMlktree({"new", "a", "b"}).status, 2);
}

TEST_F(NewTest, RefusesNamesThatTheFilesCannotHold) {
    for (const char* const name : {"", "a b", "a/b", "..", ".a", "a\"b", "a;b", "a#b", "a=b",
                                   "a\nb", "Model_7", "xCUSTOMER_IDx", "SYS_INI", "\xC3\xA4"}) {
        for (const char* const option : {"--maker", "--model"}) {
            const Outcome outcome = make({option, name});
            EXPECT_EQ(outcome.status, 2) << name;
            EXPECT_THAT(outcome.err, StartsWith("mlktree: " + std::string(option))) << name;
            EXPECT_FALSE(fs::exists(mDir.path("lines"))) << name;
        }
    }
    EXPECT_EQ(make({"--model", std::string(61, 'a')}).status, 2);
    EXPECT_EQ(make({"--model", std::string(60, 'a'), "--maker", std::string(60, '-')}).status, 0);
    EXPECT_EQ(runMlktree({"check", mLine, "--fail-on", "note"}).status, 0);
}

TEST_F(NewTest, RemovesWhatItMadeIfAFileCannotBeWritten) {
    const mlk::testing::SmallDisk disk;
    if (!disk.isMounted()) {
        GTEST_SKIP() << disk.problem();
    }
    disk.fill();
    const std::string line = disk.dir().path("line");
    const Outcome outcome = runMlktree({"new", line});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.err, StartsWith("mlktree: " + line));
    EXPECT_THAT(outcome.err, EndsWith(": No space left on device\n"));
    EXPECT_FALSE(fs::exists(line));
}

}  // namespace

}  // namespace mlk::tree
