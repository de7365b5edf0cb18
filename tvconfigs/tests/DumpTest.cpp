#include <android/log.h>
#include <gmock/gmock.h>

#include "tvconfigs/tests/Asking.h"
#include "tvconfigs/tests/TvSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::testing::ElementsAre;

constexpr char kAllOff[] =
        "MlkTvConfigs:\n\tmAtvSystem:0\n\tmDtvSystem:0\n\tmAtvEnabled:false\n"
        "\tmAtvAntennaEnabled:false\n\tmAtvCableEnabled:false\n\tmDtvEnabled:false\n"
        "\tmDtvAntennaEnabled:false\n\tmDtvCableEnabled:false\n\tmDtvSatelliteEnabled:false\n"
        "\tmPvrEnabled:false\n\tmLivepauseEnabled:false\n\tmHdmiEnabled:false\n"
        "\tmVgaEnabled:false\n\tmAvEnabled:false\n\tmYppEnabled:false\n\tmCiEnabled:false\n"
        "\tmPipEnabled:false\n\tmMheg5Enabled:false\n\tmGingaEnabled:false\n"
        "\tmHbbtvEnabled:false\n\tmTeltexEnabled:false\n\tmCloseCaptionEnabled:false\n"
        "\tmAtscCloseCaptionEnabled:false\n\tmNtscCloseCaptionEnabled:false\n"
        "\tmIsdbCloseCaptionEnabled:false\n\tmWOWEnabled:false\n";

std::string replaced(std::string text, const std::string& what, const std::string& by) {
    for (size_t at = text.find(what); at != std::string::npos;
         at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
    return text;
}

TEST(DumpTest, AStartLogsEveryValue) {
    TvSet set;
    set.start("");
    EXPECT_THAT(set.log().texts(ANDROID_LOG_DEBUG, "MlkTvConfigs"), ElementsAre(kAllOff));
}

TEST(DumpTest, EachFlagHasItsLine) {
    for (const TvFlag& flag : tvFlags()) {
        TvSet set;
        const std::string master = flag.master == nullptr ? flag.key : flag.master;
        set.start(std::string(flag.key) + "=true\n" + master + "=true\n");
        std::string expected = kAllOff;
        for (const std::string name : {tvFlag(master).name, flag.name}) {
            expected = replaced(expected, '\t' + name + ":false", '\t' + name + ":true");
        }
        EXPECT_THAT(set.log().texts(ANDROID_LOG_DEBUG, "MlkTvConfigs"), ElementsAre(expected));
    }
}

TEST(DumpTest, SystemsAreNumbers) {
    TvSet set;
    set.start("persist.vendor.mlk.tv.atv_system=-7\npersist.vendor.mlk.tv.dtv_system=2147483647\n");
    const std::string expected = replaced(replaced(kAllOff, "AtvSystem:0", "AtvSystem:-7"),
                                          "DtvSystem:0", "DtvSystem:2147483647");
    EXPECT_THAT(set.log().texts(ANDROID_LOG_DEBUG, "MlkTvConfigs"), ElementsAre(expected));
}

TEST(DumpTest, AFreshRecordHasEverythingOn) {
    const ::mlk::testing::LogCapture log;
    TvConfigInfo().Dump();
    EXPECT_THAT(log.texts(ANDROID_LOG_DEBUG, "MlkTvConfigs"),
                ElementsAre(replaced(replaced(kAllOff, "false", "true"), "System:0", "System:1")));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
