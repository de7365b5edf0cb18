// The test program passes on a right service.

#include <gmock/gmock.h>
#include <poll.h>
#include <signal.h>

#include <filesystem>
#include <ostream>
#include <regex>

#include "tests/vts/tests/VtsRun.h"

namespace mlk::vts {
namespace {

using ::testing::HasSubstr;

struct Set {
    const char* name;
    int model;
    const char* board; /**< null: as the sample has it */
    int country;       /**< -1: none is saved */
    bool writes;
};

/** What GoogleTest says in the place of the bytes. */
void PrintTo(const Set& set, std::ostream* out) {
    *out << set.name;
}

class VtsPasses : public VtsRun, public ::testing::WithParamInterface<Set> {};

TEST_P(VtsPasses, OnTheSample) {
    const Set& param = GetParam();
    mSet.dir().write("impdata/project_id.bin", "PROJECT_ID=" + std::to_string(param.model) + "\n");
    if (param.board != nullptr) {
        mSet.dir().write("impdata/board_id.bin", std::string("BOARD_ID=") + param.board + "\r\n");
    }
    if (param.country >= 0) {
        mSet.dir().write("tvdata/tvsysmap/country_id.bin",
                         "# kept\nCOUNTRY_ID = " + std::to_string(param.country) + "\r\n");
    }
    start();
    const auto before = files();
    const Outcome outcome =
            run(param.writes ? std::vector<std::string>{"--writes"} : std::vector<std::string>{});
    EXPECT_EQ(outcome.status, 0) << outcome.out;
    // All tests of both kinds run, except the one that ends the service and the setters' if
    // disabled.
    EXPECT_THAT(outcome.out,
                HasSubstr(param.writes ? "[  PASSED  ] 25 tests" : "[  PASSED  ] 14 tests"));
    EXPECT_EQ(files(), before);
    EXPECT_TRUE(mService->running());
}

INSTANTIATE_TEST_SUITE_P(
        Sets, VtsPasses,
        ::testing::Values(Set{"Europe", 2, nullptr, -1, false},
                          Set{"EuropeWrites", 2, nullptr, -1, true},
                          Set{"SmallestModel", 1, "/tvconfigs/board/skerry_b1.ini", 14, false},
                          Set{"LatinAmerica", 3, "DEFAULT_BOARD_ID", 5, true},
                          Set{"NorthAmerica", 4, nullptr, 44, true},
                          Set{"China", 5, nullptr, 7, false},
                          Set{"UnitedKingdom", 6, nullptr, 43, true},
                          Set{"Pacific", 7, "/tvconfigs/board/none.ini", 1, false}),
        [](const auto& set) { return set.param.name; });

class Vts : public VtsRun {};

TEST_F(Vts, PassesOnASetWithoutAnyFile) {
    for (const char* folder : {"tvconfigs", "tvdata", "impdata", "data/property"}) {
        std::filesystem::remove_all(mSet.dir().path(folder));
        mSet.dir().mkdir(folder);
    }
    start();
    const auto before = files();
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{}, std::vector<std::string>{"--writes"}}) {
        const Outcome outcome = run(options);
        EXPECT_EQ(outcome.status, 0) << outcome.out;
        EXPECT_EQ(files(), before);
    }
}

// The service writes each value in its own spelling; the program restores the former text.
TEST_F(Vts, LeavesEverySpellingAsItWas) {
    edit("tvconfigs/tv/tv_eu.config", "enable_atv=true", "enable_atv=1");
    edit("tvconfigs/tv/tv_eu.config", "enable_vga=false", "enable_vga= no");
    edit("tvconfigs/tv/tv_eu.config", "atv_system=0", "atv_system=00");
    mSet.dir().write("impdata/project_id.bin", "# of this set\r\nPROJECT_ID = 2\r\n");
    mSet.dir().write("tvdata/tvsysmap/country_id.bin", "# of this set\r\nCOUNTRY_ID = 14\r\n");
    mSet.setProperty("persist.vendor.mlk.forcestr", "0x2");
    mSet.setProperty("persist.vendor.mlk.enable_wow", "on");
    mSet.setProperty("persist.vendor.mlk.tv.enable_pip", "7");
    start();
    const auto before = files();
    const Outcome outcome = run({"--writes"});
    EXPECT_EQ(outcome.status, 0) << outcome.out;
    EXPECT_EQ(files(), before);
    EXPECT_EQ(before.at("impdata/project_id.bin"), "# of this set\r\nPROJECT_ID = 2\r\n");
}

TEST_F(Vts, PassesWithBrokenFiles) {
    edit("tvconfigs/model/TRQ43_M2_EU.ini", "ModeStatus       = 0", "ModeStatus = 3");
    edit("tvconfigs/model/TRQ43_M2_EU.ini", "[IRFilter]", "[IRFilter] # = \n==\n = x\n[\n#\n;");
    edit("tvconfigs/tv/tv_eu.config", "enable_cc=false", "enable_cc=TRUE\nno line");
    edit("tvconfigs/country/country_eu.txt", "GERMANY", "Germany\n,,\nAAA");
    mSet.dir().write("tvconfigs/freqtables/country_freq_map.xml", "<COUNTRY_FREQ_MAP>");
    mSet.setProperty("vendor.mlk.nt.dumplevel", "0x1F");
    mSet.setProperty("persist.vendor.mlk.forcestr", "no number");
    start();
    const Outcome outcome = run({});
    EXPECT_EQ(outcome.status, 0) << outcome.out;
}

TEST_F(Vts, FollowsTheServiceThroughItsDeath) {
    start();
    const auto vts = begin({"--writes", "--kill=" + std::to_string(mService->pid())});
    while (mService->running() && vts->running()) {
        (void)poll(nullptr, 0, 5);
    }
    ASSERT_EQ(mService->wait(), 128 + SIGKILL) << vts->out();
    startService();
    EXPECT_EQ(vts->wait(), 0) << vts->out();
    EXPECT_THAT(vts->out(), HasSubstr("[  PASSED  ] 26 tests"));
}

TEST_F(Vts, TellsWhatItTakes) {
    const Outcome help = run({"--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* option : {"--writes", "--restart", "--kill=PID", "--list-methods"}) {
        EXPECT_THAT(help.out, HasSubstr(option));
    }
    for (const char* wrong :
         {"--write", "more", "--kill=", "--kill=1", "--kill=12x", "--kill=99999999999"}) {
        const Outcome outcome = run({wrong});
        EXPECT_EQ(outcome.status, 2) << wrong;
        EXPECT_THAT(outcome.out, HasSubstr(std::string(wrong) + ": not understood"));
    }
}

TEST_F(Vts, KnowsEveryMethodOfTheInterfaces) {
    std::vector<std::string> declared;
    for (const char* interface : {"IMlkTvConfigs", "IMlkFrameworkConfigs", "IMlkProjectConfigs"}) {
        const std::string file =
                testing::sourceDir() + "/service/interfaces/mlkconfigs/1.0/" + interface + ".hal";
        mSet.dir().write("hal/" + std::string(interface), "");
        std::filesystem::copy_file(file, mSet.dir().path("hal/" + std::string(interface)),
                                   std::filesystem::copy_options::overwrite_existing);
        const std::string text = mSet.dir().read("hal/" + std::string(interface));
        const std::regex method(R"((\w+)\([^()]*\)\s*generates)");
        for (std::sregex_iterator at(text.begin(), text.end(), method), end; at != end; ++at) {
            declared.push_back(std::string(interface) + "::" + (*at)[1].str());
        }
    }
    EXPECT_EQ(declared.size(), 132U);
    std::vector<std::string> known;
    for (const auto& row : methods()) {
        known.push_back(row[0]);
    }
    EXPECT_THAT(known, ::testing::UnorderedElementsAreArray(declared));
}

}  // namespace
}  // namespace mlk::vts
