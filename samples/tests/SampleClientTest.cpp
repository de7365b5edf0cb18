// What the client makes of the sample under the real service: hints, sections, the table, changes.

#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <sstream>

#include "samples/tests/ServedSample.h"

namespace mlk::samples {

namespace {

using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class SampleClientTest : public ServedSample {
  protected:
    struct Outcome {
        int status;
        std::string out;
        std::string err;
    };
    static Outcome run(std::vector<std::string> words) {
        words.insert(words.begin(), testing::binDir() + "/mlkctl");
        testing::Process process(std::move(words));
        const int status = process.wait();
        return {status, process.out(), process.err()};
    }
};

TEST_F(SampleClientTest, APathOfThePartitionsFilesIsHintedAt) {
    const std::string begin = "mlkctl: paths are taken as they are, and /tvconfigs is mounted at " +
                              mSet.tvconfigs() + "; ";
    const Outcome file = run({"call", "getTvFile", "/tvconfigs/customer.ini"});
    EXPECT_EQ(file.out, "{\"size\":0,\"base64\":\"\"}\n");
    EXPECT_EQ(file.err, begin + "did you mean " + mSet.tvconfigs() + "/customer.ini?\n");
    EXPECT_EQ(run({"call", "isFileExist", "/tvconfigs/none.ini"}).err,
              begin + mSet.tvconfigs() + "/none.ini does not exist either\n");
    EXPECT_EQ(run({"call", "getTvFile", mSet.tvconfigs() + "/customer.ini"}).err, "");
    EXPECT_THAT(run({"call", "getVendorPartitionFile", mSet.tvconfigs() + "/customer.ini"}).err,
                StartsWith("mlkctl: no allocator of shared memory runs"));
}

// A text without its blanks: a table wraps long paths.
std::string unwrapped(std::string text) {
    text.erase(
            std::remove_if(text.begin(), text.end(), [](char c) { return c == ' ' || c == '\n'; }),
            text.end());
    return text;
}

TEST_F(SampleClientTest, ShowTellsWhatMlktreeFinds) {
    const Outcome sound = run({"show", "--timeout", "100"});
    EXPECT_EQ(sound.err, "");
    EXPECT_THAT(unwrapped(sound.out), HasSubstr("/tvconfigs/ssc/ssc_b2.ini(board)"));
    EXPECT_THAT(unwrapped(sound.out), HasSubstr("/tvdata/channels/preset_eu.db(country)"));
    EXPECT_THAT(sound.out, Not(HasSubstr("mlktree check")));

    const std::string model = "tvconfigs/model/TRQ43_M2_EU.ini";
    std::string text = mSet.dir().read(model);
    const std::string path = "/tvconfigs/overscan/overscan_uhd.ini";
    text.replace(text.find(path), path.size(), "/tvconfigs/overscan/none.ini");
    mSet.dir().write(model, text);
    EXPECT_THAT(run({"show", "--timeout", "100"}).out, EndsWith("\n\n1 error: `mlktree check`\n"));
    // For another model the line is of no interest; this one is not sold in the saved country.
    run({"call", "setProjectId", "6"});
    run({"call", "setCountryId", "UNITED_KINGDOM"});
    EXPECT_THAT(run({"show", "--timeout", "100"}).out, Not(HasSubstr("mlktree check")));
}

TEST_F(SampleClientTest, SectionsAndKeysAreUnderstoodOrSuggested) {
    const std::string file = mSet.tvconfigs() + "/tv/tv_eu.config";
    EXPECT_EQ(run({"get", "--plain", "LiveTV", "TvConfig"}).out, file + '\n');
    EXPECT_EQ(run({"call", "getConfig", "LiveTV", "TvConfig"}).out,
              "{\"success\":true,\"value\":\"" + file + "\"}\n");
    EXPECT_EQ(run({"call", "getAudioDelay", "SPEAKER", "AV_DELAY", ""}).out,
              run({"call", "getAudioDelay", "[SPEAKER]", "AV_DELAY", ""}).out);
    EXPECT_EQ(run({"call", "getConfig", "livetv", "TvConfig"}).err,
              "mlkctl: there is no section \"livetv\"; did you mean [LiveTV]?\n");
    EXPECT_EQ(run({"get", "LiveTV", "tvConfig"}).err,
              "mlkctl: [LiveTV] has no key \"tvConfig\"; did you mean TvConfig?\n");
    EXPECT_THAT(run({"call", "getEQPath", "5"}).err,
                EndsWith("; INDEX 5 is out of its range, 0 or 1\n"));
}

TEST_F(SampleClientTest, TheTableShowsTheWholeSet) {
    const std::string table = mlkctl({"show"});
    EXPECT_THAT(table, AllOf(StartsWith("Project\n"), Not(HasSubstr("(missing)")),
                             HasSubstr("  Model file        /tvconfigs/model/TRQ43_M2_EU.ini\n"
                                       "  Board file        /tvconfigs/board/skerry_b2.ini\n"),
                             HasSubstr("  EDID of port 3    -\n"
                                       "  HDCP 1.x          /impdata/hdcp/hdcp_1x.bin\n")));
    std::istringstream lines(table);
    for (std::string line; std::getline(lines, line);) {
        // Only the mount points are as long as the test's folder.
        EXPECT_TRUE(line.size() <= 60 || line.find(mSet.dir().path()) != std::string::npos) << line;
    }
}

TEST_F(SampleClientTest, AFileThatIsGoneIsMarked) {
    ASSERT_EQ(unlink((mSet.tvconfigs() + "/pq/pq_trq43.bin").c_str()), 0);
    EXPECT_THAT(mlkctl({"show"}),
                HasSubstr("  Picture quality   /tvconfigs/pq/pq_trq43.bin (missing)\n"));
}

TEST_F(SampleClientTest, ASetWithoutItsModelSaysSo) {
    mSet.dir().write("impdata/project_id.bin", "PROJECT_ID=99\n");
    start();
    EXPECT_THAT(
            mlkctl({"show"}),
            StartsWith("This set has no model:\n/tvconfigs/system/tarnquill_skerry.ini has none of "
                       "index 99.\n\nProject\n"));
}

TEST_F(SampleClientTest, ChangesAreWatched) {
    testing::Process watch({testing::binDir() + "/mlkctl", "watch", "--interval", "0.01"});
    ASSERT_TRUE(watch.waitForOut("watching: model 2 TRQ43-M2, country GERMANY, 15 features on, "));
    mlkctl({"call", "setCountryId", "FRANCE"});
    ASSERT_TRUE(watch.waitForOut("\ncountry: GERMANY -> FRANCE\n"));
    mlkctl({"call", "setFlag", "HBBTV", "false"});
    ASSERT_TRUE(watch.waitForOut("\nfeature HBBTV: on -> off\n"));
    ASSERT_TRUE(watch.waitForOut("\nproperty persist.vendor.mlk.tv.enable_hbbtv: "));
    mlkctl({"call", "setProjectId", "1"});
    // A look during the change may see the new model's name with the old number.
    ASSERT_TRUE(watch.waitForOut("\nmodel: 2 TRQ43-M2 -> "));
    ASSERT_TRUE(watch.waitForOut(" -> 1 TRQ32-S1\n"));
    watch.kill(SIGINT);
    EXPECT_EQ(watch.wait(), 0);
    EXPECT_EQ(watch.err(), "");
}

}  // namespace

}  // namespace mlk::samples
