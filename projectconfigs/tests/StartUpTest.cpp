#include <android/log.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <thread>

#include "host/testing/OtherUser.h"
#include "platform/Platform.h"
#include "projectconfigs/ProjectSet.h"
#include "projectconfigs/tests/ServiceOnSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::MatchesRegex;
using ::testing::Not;

class StartUpTest : public ServiceOnSet {
  protected:
    static std::string hardwareAudioFile() {
        return ProjectSet(systemPartitions(), systemProperties(), RegionalData::GetInstance(),
                          {1, "", kNoCountry})
                .sounds()
                .hardwareName();
    }
};

TEST_F(StartUpTest, AMissingPartitionIsToldWithItsReason) {
    std::filesystem::remove_all(mSet.tvdata());
    start();
    EXPECT_THAT(logged(ANDROID_LOG_ERROR),
                Contains("partition " + mSet.tvdata() +
                         " cannot be read and written: No such file or directory"));
}

TEST_F(StartUpTest, APartitionThatCannotBeWrittenIsTold) {
    for (const std::string& path : {mSet.impdata(), mSet.tvdata()}) {
        ASSERT_EQ(chmod(path.c_str(), 0555), 0);
        EXPECT_TRUE(mlk::testing::asOtherUser(mSet.dir().path(), [&] {
            start();
            const std::vector<std::string> errors = logged(ANDROID_LOG_ERROR);
            return std::count(errors.begin(), errors.end(),
                              "partition " + path +
                                      " cannot be read and written: Permission denied") == 1;
        })) << path;
        ASSERT_EQ(chmod(path.c_str(), 0755), 0);
    }
}

TEST_F(StartUpTest, ReadsTheSetAndLogsWhereItComesFrom) {
    start();
    EXPECT_THAT(
            logged(ANDROID_LOG_DEBUG),
            ElementsAre("mProjectMaxIdx:2", "ProjectConfigs:", "\tCustomer ID=42", "\tProject ID=1",
                        "\tProject max index=2", "\tSys ini file=" + mSet.tvconfigs() + "/sys.ini",
                        "\tProject ini file=" + mSet.tvconfigs() + "/model/A.ini",
                        "\tBoard ini file=" + mSet.tvconfigs() + "/board.ini",
                        "\tProject total item=2", "[DDCCI] customerDdcciConfigPath = ",
                        "[InitTvSysMapInfo:875] tvSysMapCfgIni="));
    EXPECT_THAT(logged(ANDROID_LOG_ERROR),
                ElementsAre("Can't get audio config path!", "Can't get audio config IC path!",
                            "Can't get audio config AVR path!", "Can't get karaoke config path!",
                            "Can't get key config path!", "Can't get Customer DDCCI config path!"));
    EXPECT_EQ(panel(), "panel A");
    EXPECT_EQ(boardName(), "board");
}

TEST_F(StartUpTest, PersistedIndexSelectsTheModel) {
    write("impdata/project_id.bin", "PROJECT_ID=2\n");
    start();
    EXPECT_EQ(panel(), "panel B");
}

TEST_F(StartUpTest, EmptySetStillStarts) {
    for (const char* file : {"/customer.ini", "/sys.ini"}) {
        ASSERT_EQ(remove((mSet.tvconfigs() + file).c_str()), 0);
    }
    ASSERT_EQ(remove((mSet.impdata() + "/project_id.bin").c_str()), 0);
    ASSERT_EQ(remove((mSet.impdata() + "/board_id.bin").c_str()), 0);
    start();
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG),
                ElementsAre("Open " + mSet.impdata() + "/board_id.bin fail!",
                            MatchesRegex("\\[parse_customer_ini [0-9]+\\] " + mSet.tvconfigs() +
                                         "/customer.ini don't exist."),
                            MatchesRegex("\\[parse_sys_ini [0-9]+\\]  don't exist."),
                            MatchesRegex("\\[parse_project_ini [0-9]+\\]  don't exist."),
                            MatchesRegex("\\[parse_project_ini [0-9]+\\]  don't exist."),
                            "mProjectMaxIdx:0", "ProjectConfigs:", "\tCustomer ID=",
                            "\tProject ID=0", "\tProject max index=0", "\tSys ini file=",
                            "\tProject ini file=", "\tBoard ini file=", "\tProject total item=0",
                            "[DDCCI] customerDdcciConfigPath = ",
                            "[InitTvSysMapInfo:875] tvSysMapCfgIni="));
    EXPECT_EQ(panel(), "");
    EXPECT_EQ(number(asked(&IMlkProjectConfigs::getProjectId)), "0");
    EXPECT_EQ(number(asked(&IMlkProjectConfigs::getProjectMaxIdx)), "0");
    EXPECT_THAT(asked(&IMlkProjectConfigs::getProjectIniList)->size(), 0U);
    EXPECT_EQ(flag(asked(&IMlkProjectConfigs::setProjectId, 1)), "false");
}

TEST_F(StartUpTest, UnwritableIdentityFileGivesProjectOne) {
    ASSERT_EQ(remove((mSet.impdata() + "/project_id.bin").c_str()), 0);
    mSet.dir().mkdir("impdata/project_id.bin");
    start();
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG),
                Contains("Open " + mSet.impdata() + "/project_id.bin fail!"));
    EXPECT_EQ(number(asked(&IMlkProjectConfigs::getProjectId)), "1");
    EXPECT_EQ(panel(), "panel A");
}

TEST_F(StartUpTest, DebugPropertyLogsEveryItem) {
    mSet.setProperty("persist.vendor.mlk.configs.debug", "1");
    start();
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG), Contains("ProjectConfigs deatil:"));
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG), Contains("\t[PANEL]:m_pPanelName=panel A"));
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG), Not(Contains("ProjectConfigs:")));
}

TEST_F(StartUpTest, DebugPropertyBelowOneOrNoNumberIsOff) {
    for (const char* value : {"0", "-1", "on", "", " "}) {
        mSet.setProperty("persist.vendor.mlk.configs.debug", value);
        mLog.clear();
        start();
        EXPECT_THAT(logged(ANDROID_LOG_DEBUG), Contains("ProjectConfigs:")) << value;
        EXPECT_THAT(logged(ANDROID_LOG_DEBUG), Not(Contains("ProjectConfigs deatil:"))) << value;
    }
    mSet.setProperty("persist.vendor.mlk.configs.debug", " 2x");
    mLog.clear();
    start();
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG), Contains("ProjectConfigs deatil:"));
}

TEST_F(StartUpTest, HardwareNamesTheAudioFile) {
    EXPECT_EQ(hardwareAudioFile(), "audio_.ini");
    mSet.setProperty("ro.hardware", "ml9650");
    EXPECT_EQ(hardwareAudioFile(), "audio_ml9650.ini");
}

TEST_F(StartUpTest, LongestHardwareNameFits) {
    const std::string name(91, 'h');
    mSet.setProperty("ro.hardware", name);
    EXPECT_EQ(hardwareAudioFile(), "audio_" + name + ".ini");
}

TEST_F(StartUpTest, AnswersAsWithoutAuxiliaryAndRegionalFiles) {
    start();
    const ProjectConfigKey key{"[S]", "k"};
    EXPECT_EQ(text(asked(&IMlkProjectConfigs::getAudioDelay, key, "ARC")), "0");
    EXPECT_EQ(flag(asked(&IMlkProjectConfigs::setAvrVendorId, "vendor")), "true");
    EXPECT_EQ(flag(asked(&IMlkProjectConfigs::setAvrOSDName, "name")), "true");
    EXPECT_EQ(number(asked(&IMlkProjectConfigs::getKaraokeConfig, key)), "0");
    EXPECT_EQ(text(asked(&IMlkProjectConfigs::getGlobalKeyConfig, key)), "");
    EXPECT_EQ(number(asked(&IMlkProjectConfigs::getCustomerDdcciConfigInt, key)), "0");
    EXPECT_EQ(text(asked(&IMlkProjectConfigs::getCustomerDdcciConfigString, key)), "");
    EXPECT_EQ(asked(&IMlkProjectConfigs::getCountryList)->size(), 0U);
    EXPECT_EQ(asked(&IMlkProjectConfigs::getCLTVCountryList)->size(), 0U);
    EXPECT_EQ(asked(&IMlkProjectConfigs::getLanguageList)->size(), 0U);
    EXPECT_EQ(asked(&IMlkProjectConfigs::getFreqTableList, 14, FreqTableType::DTV_CABLE,
                    AtscCableType::AUTO)
                      ->size(),
              0U);
    EXPECT_EQ(flag(asked(&IMlkProjectConfigs::isSupportTvSysReload)), "false");
    EXPECT_EQ(flag(asked(&IMlkProjectConfigs::setCountryId, 14)), "true");
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
