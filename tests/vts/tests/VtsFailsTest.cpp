// The test program detects a wrong service, and names the method.

#include <gmock/gmock.h>

#include <set>

#include "host/testing/Sanitizers.h"
#include "tests/vts/tests/VtsRun.h"

namespace mlk::vts {
namespace {

using ::testing::HasSubstr;

// Each method of the program's table has the fault in turn. The set does not stay changed.
class VtsFails : public VtsRun, public ::testing::WithParamInterface<const char*> {
  protected:
    void expectFound(const std::string& kind, const std::string& method, const std::string& suite) {
        mService = nullptr;
        start(FAULTY_SERVICE, {{"MLK_FAULT", kind + " " + method}, {"ANDROID_LOG_TAGS", "*:S"}});
        const auto before = files();
        const Outcome outcome = run({"--writes", "--gtest_filter=*/" + suite + ".*"});
        EXPECT_EQ(outcome.status, 1) << kind << " " << method << "\n" << outcome.out;
        EXPECT_THAT(outcome.out, HasSubstr(method.substr(method.find("::") + 2)));
        EXPECT_EQ(files(), before) << kind << " " << method;
    }
};

// The programs take the same way for each method, and each method starts both of them anew.
constexpr int kStep = ::mlk::testing::kSanitized ? 5 : 1;

TEST_P(VtsFails, NamesTheMethodThatAnswersWrong) {
    int number = 0;
    for (const auto& row : methods()) {
        if (row[0].find(std::string(GetParam()) + "::") == 0 && number++ % kStep == 0) {
            expectFound("wrong", row[0], row[2]);
        }
    }
    EXPECT_GT(number, 20);
}

TEST_P(VtsFails, NamesTheSetterThatDoesNothing) {
    int number = 0;
    for (const auto& row : methods()) {
        if (row[0].find(std::string(GetParam()) + "::") == 0 && row[1] == "writes" &&
            number++ % kStep == 0) {
            expectFound("idle", row[0], row[2]);
        }
    }
    EXPECT_GT(number, 1);
}

INSTANTIATE_TEST_SUITE_P(Interfaces, VtsFails,
                         ::testing::Values("IMlkTvConfigs", "IMlkFrameworkConfigs",
                                           "IMlkProjectConfigs"),
                         [](const auto& interface) { return interface.param; });

class VtsOf : public VtsRun {};

TEST_F(VtsOf, AServiceWithoutAFaultPasses) {
    start(FAULTY_SERVICE);
    const Outcome outcome = run({"--writes"});
    EXPECT_EQ(outcome.status, 0) << outcome.out;
}

TEST_F(VtsOf, NoServiceFails) {
    const Outcome outcome = run({});
    EXPECT_EQ(outcome.status, 1) << outcome.out;
    for (const char* interface :
         {"::IMlkProjectConfigs", "::IMlkTvConfigs", "::IMlkFrameworkConfigs"}) {
        EXPECT_THAT(outcome.out, HasSubstr(interface));
    }
}

TEST_F(VtsOf, NoAllocatorFailsForSharedMemory) {
    start();
    mAllocator = nullptr;
    const Outcome outcome = run({});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.out, HasSubstr("getVendorPartitionFile("));
}

// Changes on a set after the start of the service, which answers from the former state.
TEST_F(VtsOf, AChangedSetFailsForWhatReadsIt) {
    struct Change {
        const char* file;
        const char* text;
        const char* other;
        std::vector<const char*> methods;
    };
    const Change changes[] = {
            {"impdata/project_id.bin", "=2", "=3", {"getProjectId", "getPanelName", "debug"}},
            {"impdata/board_id.bin", "b2.ini", "b1.ini", {"getSSCPath", "getAMPAddr(0)"}},
            {"tvconfigs/customer.ini", "= TARNQUILL", "= ANOTHER", {"getCustomerId"}},
            {"tvconfigs/system/tarnquill_skerry.ini", "#Model_7", "#Model_8", {"getProjectMaxIdx"}},
            {"tvconfigs/model/TRQ43_M2_EU.ini",
             "OSMR-43U60-B2\"",
             "ANOTHER\"",
             {"getPanelName answers\n  \"OSMR-43U60-B2\"\nand the set says\n  \"ANOTHER\"",
              "getConfig([PANEL], m_pPanelName)", "getConfigsByCategory([PANEL])"}},
            {"tvconfigs/audio/ic_pln2104.ini",
             "\n\n[",
             "\n\n[AUDIO]\nDELAY_NEW = 4\n[",
             {"getAudioDelay(", "debug writes"}},
            {"tvconfigs/karaoke/karaoke_home.ini",
             "\n\n[",
             "\n\n[MIC]\nNEW = 4\n[",
             {"getKaraokeConfig("}},
            {"tvconfigs/keys/keys_joystick.ini",
             "\n\n[",
             "\n\n[PAD]\nNEW = 4\n[",
             {"getGlobalKeyConfig("}},
            {"tvconfigs/ddcci/ddcci_std.ini",
             "\n\n[",
             "\n\n[BUS]\nNEW = 4\n[",
             {"getCustomerDdcciConfigInt(", "getCustomerDdcciConfigString("}},
            {"tvconfigs/tv/tv_eu.config", "dtv_system=1", "dtv_system=2", {"getDtvSystem"}},
            {"tvconfigs/tv/tv_eu.config",
             "enable_vga=false",
             "enable_vga=1",
             {"vgaEnabled", "getFlag(12)"}},
            {"data/property/persist.vendor.mlk.tv.enable_pip", "true", "false", {"pipEnabled"}},
            {"data/property/vendor.mlk.nt.dumplevel", "2", "3", {"getTvserviceDumpLevel"}},
            {"data/property/persist.vendor.mlk.forcestr", "0", "1", {"getForceStrEnabled"}},
    };
    start();
    const auto before = files();
    for (const Change& change : changes) {
        SCOPED_TRACE(change.file);
        edit(change.file, change.text, change.other);
        const Outcome outcome = run({"--gtest_filter=-*ProjectFrequencies*:*Load*"});
        EXPECT_EQ(outcome.status, 1);
        for (const char* method : change.methods) {
            EXPECT_THAT(outcome.out, HasSubstr(method));
        }
        mSet.dir().write(change.file, before.at(change.file));
    }
    // The service reads the map of the channel plans at the first call.
    ASSERT_EQ(run({}).status, 0);
    edit("tvconfigs/freqtables/country_freq_map.xml", "freqtable_eu", "freqtable_dvbt_uhf");
    const Outcome outcome = run({});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.out, HasSubstr("getFreqTableList("));
}

}  // namespace
}  // namespace mlk::vts
