// `mlkctl describe`, and `mlkctl call ... --help`, which shows the same.

#include <gmock/gmock.h>

#include <sstream>

#include "tools/common/Wrap.h"
#include "tools/mlkctl/tests/Harness.h"

namespace mlk::ctl {

namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using Words = std::vector<std::string>;

// The description that these words give, without a service.
std::string described(Words words) {
    Script script;
    words.insert(words.begin(), "describe");
    const std::set<std::string> all = {"IMlkProjectConfigs", "IMlkTvConfigs",
                                       "IMlkFrameworkConfigs"};
    const Outcome outcome = runMlkctl(words, script, "", all);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(script.calls, IsEmpty());
    return outcome.out;
}

std::string refused(Words words) {
    Script script;
    words.insert(words.begin(), "describe");
    const Outcome outcome = runMlkctl(words, script);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    return outcome.err;
}

TEST(DescribeTest, DescribesAMethod) {
    EXPECT_EQ(described({"IMlkProjectConfigs", "getHDMIEdidPath"}),
              "IMlkProjectConfigs getHDMIEdidPath PORT VERSION\n"
              "\n"
              "The file of an HDMI port's EDID.\n"
              "The port chooses the section, the version chooses the key.\n"
              "\n"
              "Arguments:\n"
              "  PORT     int32_t, 0 to 3: which port\n"
              "  VERSION  EdidVer: which EDID of the port; a number without an enumerator\n"
              "           stands for the empty key\n"
              "           EDID_1P4 0, EDID_2P0 1, EDID_2P1 2\n"
              "\n"
              "Answer     OptionalString: the value; empty if there is no such item\n"
              "No answer  if the port is not 0 to 3\n"
              "Item       [HDMI_EDID_1] HDMI_EDID_File_1P4, HDMI_EDID_File_2P0,\n"
              "           HDMI_EDID_File_2P1\n"
              "Item       [HDMI_EDID_2] HDMI_EDID_File_1P4, HDMI_EDID_File_2P0,\n"
              "           HDMI_EDID_File_2P1\n"
              "Item       [HDMI_EDID_3] HDMI_EDID_File_1P4, HDMI_EDID_File_2P0,\n"
              "           HDMI_EDID_File_2P1\n"
              "Item       [HDMI_EDID_4] HDMI_EDID_File_1P4, HDMI_EDID_File_2P0,\n"
              "           HDMI_EDID_File_2P1\n");
    EXPECT_EQ(described({"tv", "getAtvSystem"}),
              "IMlkTvConfigs getAtvSystem\n"
              "\n"
              "The number of the analogue TV system.\n"
              "\n"
              "Answer     OptionalInt32: the number; a stored one may be outside the range that\n"
              "           the setter accepts\n"
              "Property   persist.vendor.mlk.tv.atv_system\n");
    EXPECT_THAT(described({"getAudioDelay"}),
                AllOf(HasSubstr("  CATEGORY KEY  ProjectConfigKey: the item in the audio files\n"
                                "  AVR_NAME      string: `ARC` for the connected receiver;"),
                      HasSubstr("File       /tvconfigs/audio/audio_*.ini\n")));
}

TEST(DescribeTest, TheInterfaceMayBeLeftOutOrShort) {
    const std::string panel = described({"IMlkProjectConfigs", "getPanelName"});
    EXPECT_EQ(described({"getPanelName"}), panel);
    EXPECT_EQ(described({"project", "getPanelName"}), panel);
    EXPECT_EQ(described({"hbbtvEnabled"}),
              described({"tv", "hbbtvEnabled"}) + '\n' + described({"framework", "hbbtvEnabled"}));
}

TEST(DescribeTest, ListsInterfacesAndTheirMethods) {
    EXPECT_THAT(
            described({}),
            AllOf(StartsWith("IMlkProjectConfigs, or project: 52 methods\n  What this set is: "),
                  HasSubstr("\nIMlkTvConfigs, or tv: 55 methods\n"),
                  HasSubstr("\nIMlkFrameworkConfigs, or framework: 25 methods\n")));
    EXPECT_THAT(described({"tv"}),
                AllOf(StartsWith("IMlkTvConfigs, or tv\n\nWhich TV features are switched on"),
                      HasSubstr("\ngetFlag TYPE\n    A flag by its number.\n"),
                      HasSubstr("\natvEnabled\n    Whether analogue TV is on.\n")));
}

TEST(DescribeTest, EveryDescriptionFitsATerminal) {
    for (const Interface* interface : interfaces()) {
        std::string all = described({std::string(interface->name)});
        for (const Method& method : interface->methods) {
            all += described({std::string(interface->name), std::string(method.name)});
        }
        std::istringstream lines(all);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_LE(columnsOf(line), 80U) << line;
        }
    }
}

TEST(DescribeTest, SaysWhatThereIsInstead) {
    EXPECT_EQ(refused({"getPanelNam"}),
              "mlkctl: there is no interface or method \"getPanelNam\"; did you mean "
              "getPanelName?\n");
    EXPECT_EQ(refused({"tv", "getPanelName"}),
              "mlkctl: IMlkTvConfigs has no method \"getPanelName\"; did you mean "
              "IMlkProjectConfigs getPanelName?\n");
    EXPECT_EQ(refused({"getPanelName", "x"}),
              "mlkctl: describe takes INTERFACE and METHOD, or one of them\n");
    EXPECT_EQ(refused({"tv", "getFlag", "x"}),
              "mlkctl: describe takes INTERFACE and METHOD, or one of them\n");
}

TEST(DescribeTest, HelpOfACallDescribesTheMethod) {
    Script script;
    const std::string expected = described({"getTvFile"});
    for (const Words& words :
         {Words{"call", "IMlkProjectConfigs", "getTvFile", "--help"},
          Words{"call", "project", "getTvFile", "--help"}, Words{"call", "getTvFile", "--help"}}) {
        EXPECT_EQ(runMlkctl(words, script).out, expected);
    }
    EXPECT_THAT(script.calls, IsEmpty());
    // An argument of this text can be given, too.
    EXPECT_EQ(runMlkctl({"call", "--", "getTvFile", "--help"}, script).status, 0);
    EXPECT_THAT(script.calls, ::testing::ElementsAre(Words{"getTvFile", "--help"}));
}

}  // namespace

}  // namespace mlk::ctl
