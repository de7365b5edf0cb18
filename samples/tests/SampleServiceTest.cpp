// The sample under the real service, asked by the real client.

#include <gmock/gmock.h>

#include "samples/tests/ServedSample.h"

namespace mlk::samples {

namespace {

using mlk::testing::binDir;
using mlk::testing::Process;
using ::testing::AllOf;
using ::testing::HasSubstr;

class SampleServiceTest : public ServedSample {
  protected:
    static std::string delay(const std::string& avrName) {
        return call({"IMlkProjectConfigs", "getAudioDelay", "[ARC]", "HDMI_DELAY", avrName});
    }
};

TEST_F(SampleServiceTest, CaptionStandardStaysOffUnderADisabledMaster) {
    EXPECT_EQ(call({"IMlkTvConfigs", "closeCaptionEnabled"}),
              "{\"success\":true,\"value\":false}\n");
    EXPECT_EQ(call({"IMlkTvConfigs", "setAtscCloseCaptionEnabled", "true"}),
              "{\"success\":true,\"value\":false}\n");
    EXPECT_EQ(mSet.dir().read("data/property/persist.vendor.mlk.tv.enable_atsc_cc"), "false");
}

TEST_F(SampleServiceTest, SetterLeavesTheTvFileAsItsEntries) {
    const std::string file = "tvconfigs/tv/tv_eu.config";
    std::string expected;
    for (const std::string& line : linesOf(contentOf(file))) {
        if (line.find('=') != std::string::npos && line.front() != '#') {
            expected += (line == "persist.vendor.mlk.tv.enable_pvr=true"
                                 ? "persist.vendor.mlk.tv.enable_pvr=false"
                                 : line) +
                        "\n";
        }
    }
    EXPECT_EQ(call({"IMlkTvConfigs", "setPvrEnabled", "false"}),
              "{\"success\":true,\"value\":false}\n");
    EXPECT_EQ(mSet.dir().read(file), expected);
    EXPECT_EQ(call({"IMlkTvConfigs", "setPipEnabled", "true"}),
              "{\"success\":true,\"value\":true}\n");
    EXPECT_EQ(mSet.dir().read(file), expected) << "a key that the file lacks is not added";
    EXPECT_EQ(mSet.dir().read("data/property/persist.vendor.mlk.tv.enable_pip"), "true");
    start();
    EXPECT_EQ(call({"IMlkTvConfigs", "pvrEnabled"}), "{\"success\":true,\"value\":false}\n");
    EXPECT_EQ(call({"IMlkTvConfigs", "getFlag", "PIP"}), "{\"success\":true,\"value\":true}\n");
}

TEST_F(SampleServiceTest, DelayDependsOnTheAudioPathAndTheAvr) {
    EXPECT_EQ(delay(""), "{\"success\":true,\"value\":\"59\"}\n");
    EXPECT_EQ(delay("ARC"), "{\"success\":true,\"value\":\"29\"}\n");
    call({"IMlkProjectConfigs", "setAvrVendorId", "0EC0DE"});
    call({"IMlkProjectConfigs", "setAvrOSDName", "Orlan900"});
    EXPECT_EQ(delay("ARC"), "{\"success\":true,\"value\":\"17\"}\n");
    call({"IMlkProjectConfigs", "setAvrVendorId", "0AFADE"});
    call({"IMlkProjectConfigs", "setAvrOSDName", "Sundra7"});
    EXPECT_EQ(delay("ARC"), "{\"success\":true,\"value\":\"47\"}\n");
    EXPECT_EQ(delay("arc"), "{\"success\":true,\"value\":\"59\"}\n");
}

TEST_F(SampleServiceTest, CustomerFilesAnswer) {
    EXPECT_EQ(call({"IMlkProjectConfigs", "getKaraokeConfig", "[MIC]", "MIC_VOLUME"}),
              "{\"success\":true,\"value\":60}\n");
    EXPECT_EQ(call({"IMlkProjectConfigs", "getGlobalKeyConfig", "[KEYPAD]", "KEY_COUNT"}),
              "{\"success\":true,\"value\":\"5\"}\n");
    EXPECT_EQ(call({"IMlkProjectConfigs", "getCustomerDdcciConfigInt", "[CUSTOM]", "VENDOR_CODE"}),
              "{\"success\":true,\"value\":0}\n");
    EXPECT_EQ(
            call({"IMlkProjectConfigs", "getCustomerDdcciConfigString", "[CUSTOM]", "VENDOR_CODE"}),
            "{\"success\":true,\"value\":\"0xE3\"}\n");
}

TEST_F(SampleServiceTest, DumpHasTheStoreAndTheAudioFiles) {
    const std::string text = mlkctl({"dump"});
    EXPECT_THAT(text, AllOf(HasSubstr("ProjectConfigs:\n  Customer ID: TARNQUILL\n"),
                            HasSubstr("    [PANEL]:m_pPanelName=OSMR-43U60-B2\n"),
                            HasSubstr("\nAudio configuration file: \n  IniProjectParser deatil:\n"),
                            HasSubstr("    File:audio_skerry.ini\n"),
                            HasSubstr("    File:avr_default.ini\n        [ARC]:")));
}

TEST_F(SampleServiceTest, TextOfAnAvrThatDoesNotFitCostsThatCallOnly) {
    Process process({binDir() + "/mlkctl", "call", "IMlkProjectConfigs", "setAvrVendorId",
                     std::string(129, 'v')});
    EXPECT_EQ(process.wait(), 3);
    EXPECT_TRUE(mService->waitForErr(
            "setAvrVendorId(a text of 129 bytes) has no answer, call refused"));
    EXPECT_EQ(delay(""), "{\"success\":true,\"value\":\"59\"}\n");
}

}  // namespace

}  // namespace mlk::samples
