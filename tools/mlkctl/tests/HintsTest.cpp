// What mlkctl call says on standard error beside an answer, and sections without brackets.

#include "tools/mlkctl/Hints.h"

#include <gmock/gmock.h>

#include "host/testing/HostSet.h"
#include "tools/mlkctl/Mounts.h"
#include "tools/mlkctl/tests/Harness.h"

namespace mlk::ctl {

namespace {

using mlk::testing::HostSet;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;
using Words = std::vector<std::string>;

TEST(EmptyAnswerTest, IsOneThatHoldsNothing) {
    for (const char* answer :
         {"[]", R"({"success":true,"value":""})", R"({"success":true,"value":0})",
          R"({"success":true,"value":"0"})", R"({"success":true,"value":false})",
          R"({"success":false,"value":"x"})", R"({"size":0,"base64":""})"}) {
        EXPECT_TRUE(isEmptyAnswer(answer, Form::JSON)) << answer;
    }
    for (const char* answer :
         {"[0]", R"({"success":true,"value":" "})", R"({"success":true,"value":10})",
          R"({"success":true,"value":"\"value\":\"\"}"})", R"({"size":1,"base64":"AA=="})"}) {
        EXPECT_FALSE(isEmptyAnswer(answer, Form::JSON)) << answer;
    }
    EXPECT_TRUE(isEmptyAnswer("", Form::RAW));
    EXPECT_FALSE(isEmptyAnswer("[]", Form::RAW));
}

TEST(MountsTest, FindsPathsOfPartitions) {
    const Mounts mounts({{"/tvconfigs", "/set/tvconfigs"}, {"/impdata", "/impdata"}});
    EXPECT_EQ(mounts.find("/tvconfigs/a/b")->path, "/set/tvconfigs/a/b");
    EXPECT_EQ(mounts.find("tvconfigs/a")->path, "/set/tvconfigs/a");
    EXPECT_EQ(mounts.find("/tvconfigs")->path, "/set/tvconfigs");
    EXPECT_EQ(mounts.find("impdata/a")->path, "/impdata/a");
    for (const char* other : {"", "/", "/tvconfigs2/a", "/set/tvconfigs/a", "/tvdata/a", "a"}) {
        EXPECT_EQ(mounts.find(other), std::nullopt) << other;
    }
    EXPECT_EQ(mounts.asWritten("/set/tvconfigs/a"), "/tvconfigs/a");
    EXPECT_EQ(mounts.asWritten("/set/tvconfigs"), "/set/tvconfigs");
    EXPECT_EQ(mounts.asWritten("/set/tvconfigs2"), "/set/tvconfigs2");
    EXPECT_EQ(mounts.asWritten("value"), "value");
    EXPECT_TRUE(beginsWithPartition("/tvdata/x"));
    EXPECT_FALSE(beginsWithPartition("/data/x"));
}

// A service whose files are elsewhere than their paths say, and which finds nothing.
class HintsTest : public ::testing::Test {
  protected:
    HintsTest() {
        mScript.bytes = {};
        mScript.items = {};
        mScript.number = 0;
        mScript.emptyTexts = true;
        mScript.flag = false;
        mScript.textOf[{"getTvconfigsPath"}] = "/set/tvconfigs";
        mScript.textOf[{"getTvdataPath"}] = "/set/tvdata";
        mScript.textOf[{"getImpdataPath"}] = "/impdata";
        mScript.numberOf[{"isFileExist", "/set/tvconfigs/there"}] = 1;
        mScript.dump =
                "    [LiveTV]:TvConfig=x\n    [LiveTV]:Empty=\n    [PANEL]:Name=y\n"
                "Audio configuration file: \n    [SPEAKER]:AV_DELAY=0\n";
    }
    // What stands on standard error; the call is answered.
    std::string hintsAt(Words words) {
        words.insert(words.begin(), "call");
        const Outcome outcome = runMlkctl(words, mScript);
        EXPECT_EQ(outcome.status, 0);
        return outcome.err;
    }

    const HostSet mSet;  // without an allocator
    Script mScript;
};

constexpr const char* kMeant =
        "mlkctl: paths are taken as they are, and /tvconfigs is mounted at /set/tvconfigs; did you "
        "mean /set/tvconfigs/there?\n";

TEST_F(HintsTest, NamesTheMountPointOfAPathThatIsTakenAsItIs) {
    EXPECT_EQ(hintsAt({"getTvFile", "/tvconfigs/there"}), kMeant);
    EXPECT_EQ(hintsAt({"getTvFile", "tvconfigs/there"}), kMeant);
    EXPECT_EQ(hintsAt({"getTvFile", "\"/tvconfigs/there\""}), kMeant);
    EXPECT_EQ(hintsAt({"--raw", "getTvFile", "/tvconfigs/there"}), kMeant);
    EXPECT_EQ(hintsAt({"isFileExist", "/tvconfigs/there"}), kMeant);
    EXPECT_EQ(hintsAt({"reloadTvConfig", "/tvconfigs/there"}), kMeant);
    EXPECT_EQ(hintsAt({"isFileExist", "/tvdata/not"}),
              "mlkctl: paths are taken as they are, and /tvdata is mounted at /set/tvdata; "
              "/set/tvdata/not does not exist either\n");
}

TEST_F(HintsTest, SaysNothingOfOtherPathsOrAnswers) {
    EXPECT_EQ(hintsAt({"isFileExist", "/impdata/not"}), "");  // mounted where it says
    EXPECT_EQ(hintsAt({"isFileExist", "/data/not"}), "");
    EXPECT_EQ(hintsAt({"isFileExist", "/set/tvconfigs/not"}), "");
    mScript.bytes = {1};
    EXPECT_EQ(hintsAt({"getTvFile", "/tvconfigs/there"}), "");
    mScript.flag = true;
    EXPECT_EQ(hintsAt({"reloadTvConfig", "/tvconfigs/there"}), "");
}

TEST_F(HintsTest, SaysThatNoAllocatorRuns) {
    const char* none =
            "mlkctl: no allocator of shared memory runs, so every delivery is empty: "
            "android.hidl.allocator@1.0::IAllocator/ashmem is not registered\n";
    EXPECT_EQ(hintsAt({"getVendorPartitionFile", "/set/tvconfigs/there"}), none);
    EXPECT_EQ(hintsAt({"getVendorPartitionFile", "/tvconfigs/there"}), std::string(kMeant) + none);
    mScript.memory = "x";
    EXPECT_EQ(hintsAt({"getVendorPartitionFile", "/set/tvconfigs/there"}), "");
}

TEST_F(HintsTest, NamesTheNearSectionOrKey) {
    EXPECT_EQ(hintsAt({"getConfig", "[LivTV]", "TvConfig"}),
              "mlkctl: there is no section \"[LivTV]\"; did you mean [LiveTV]?\n");
    EXPECT_EQ(hintsAt({"getConfig", "livetv", "TvConfig"}),
              "mlkctl: there is no section \"livetv\"; did you mean [LiveTV]?\n");
    EXPECT_EQ(hintsAt({"getConfig", "[LiveTV]", "TVCONFIG"}),
              "mlkctl: [LiveTV] has no key \"TVCONFIG\"; did you mean TvConfig?\n");
    EXPECT_EQ(hintsAt({"getConfig", "LiveTV", "TvConfg"}),
              "mlkctl: [LiveTV] has no key \"TvConfg\"; did you mean TvConfig?\n");
    EXPECT_EQ(hintsAt({"getConfigsByCategory", "[PANL]"}),
              "mlkctl: there is no section \"[PANL]\"; did you mean [PANEL]?\n");
    mScript.textOf[{"getAudioDelay", "[SPEKER]", "AV_DELAY", ""}] = "0";
    EXPECT_EQ(hintsAt({"getAudioDelay", "[SPEKER]", "AV_DELAY", ""}),
              "mlkctl: there is no section \"[SPEKER]\"; did you mean [SPEAKER]?\n");
    EXPECT_EQ(hintsAt({"getConfig", "[LiveTV]", "Empty"}), "");
    EXPECT_EQ(hintsAt({"getConfig", "[Zebra]", "x"}), "");
    // Another file's items are not in the dump.
    EXPECT_EQ(hintsAt({"getKaraokeConfig", "[LivTV]", "x"}), "");
}

TEST_F(HintsTest, AServiceThatGoesLeavesTheAnswer) {
    mScript.dying = {"debug", "getTvconfigsPath"};
    EXPECT_EQ(hintsAt({"getConfig", "[LivTV]", "TvConfig"}), "");
    EXPECT_EQ(hintsAt({"getTvFile", "/tvconfigs/there"}), "");
}

TEST_F(HintsTest, ABatchHasNone) {
    const Outcome outcome =
            runMlkctl({"batch"}, mScript, R"(["IMlkProjectConfigs","isFileExist","/tvdata/not"])");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "{\"success\":true,\"value\":0}\n");
}

TEST_F(HintsTest, ASectionWithoutBracketsIsUnderstood) {
    mScript.textOf[{"getConfig", "[LiveTV]", "TvConfig"}] = "x";
    mScript.numberOf[{"getKaraokeConfig", "[MIC]", "GAIN"}] = 7;
    mScript.itemsOf[{"getConfigsByCategory", "[PANEL]"}] = {{"Name", "y"}};
    const auto answer = [&](Words words) {
        words.insert(words.begin(), "call");
        const Outcome outcome = runMlkctl(words, mScript);
        EXPECT_EQ(outcome.err, "");
        return outcome.out;
    };
    EXPECT_EQ(answer({"getConfig", "LiveTV", "TvConfig"}), "{\"success\":true,\"value\":\"x\"}\n");
    EXPECT_EQ(answer({"getKaraokeConfig", "MIC", "GAIN"}), "{\"success\":true,\"value\":7}\n");
    EXPECT_EQ(answer({"getConfigsByCategory", "PANEL"}), "[{\"key\":\"Name\",\"value\":\"y\"}]\n");
    // What has brackets gets no more.
    mScript.calls.clear();
    answer({"getConfig", "[Zebra]", "x"});
    EXPECT_THAT(mScript.calls, Not(Contains(Words{"getConfig", "[[Zebra]]", "x"})));
}

TEST_F(HintsTest, ASectionNamedWithoutBracketsKeepsItsAnswer) {
    mScript.textOf[{"getConfig", "[LiveTV]", "TvConfig"}] = "with brackets";
    mScript.itemsOf[{"getConfigsByCategory", "LiveTV"}] = {{"TvConfig", ""}};
    const Outcome outcome = runMlkctl({"call", "getConfig", "LiveTV", "TvConfig"}, mScript);
    EXPECT_EQ(outcome.out, "{\"success\":true,\"value\":\"\"}\n");
    EXPECT_THAT(mScript.calls, Not(Contains(Words{"getConfig", "[LiveTV]", "TvConfig"})));
    // In a batch every text is taken as it is.
    const Outcome batch = runMlkctl({"batch"}, mScript,
                                    R"(["IMlkProjectConfigs","getConfig","LiveTV","TvConfig"])");
    EXPECT_EQ(batch.out, "{\"success\":true,\"value\":\"\"}\n");
}

}  // namespace

}  // namespace mlk::ctl
