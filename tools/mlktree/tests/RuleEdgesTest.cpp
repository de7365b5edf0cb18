// Where each rule begins and ends: the last value that is right and the first that is wrong, and
// files of every kind that the rule speaks of. RegionalEdgesTest has those of countries and plans.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tools/mlktree/Texts.h"
#include "tools/mlktree/tests/Harness.h"
#include "tools/mlktree/tests/RuleEdges.h"

namespace mlk::tree {

namespace {

using mlk::testing::TempDir;

constexpr const char* kModel = "tvconfigs/model/first.ini";
constexpr const char* kBoard = "tvconfigs/board/b1.ini";
constexpr const char* kSystem = "tvconfigs/system/line.ini";
constexpr const char* kCustomer = "tvconfigs/customer.ini";
constexpr const char* kKaraoke = "tvconfigs/karaoke/karaoke.ini";
constexpr const char* kPanel = "tvconfigs/audio/panel.ini";
constexpr const char* kFeatures = "tvconfigs/tv/tv_eu.config";
constexpr const char* kCountryMap = "tvconfigs/tvsysmap/countries.xml";
constexpr const char* kSystems = "tvconfigs/tvsysmap/systems.xml";
constexpr const char* kLanguages = "tvconfigs/language/language.txt";

// Models 3 to `last`, which are like the second one but for `without`.
Edit models(int last, const std::string& without = "") {
    return [=](const TempDir& dir) {
        std::string text = dir.read("tvconfigs/model/second.ini");
        if (!without.empty()) {
            replaced(kModel, without, "")(dir);
        }
        for (int i = 3; i <= last; ++i) {
            const std::string path = "tvconfigs/model/m" + std::to_string(i) + ".ini";
            dir.write(path, text);
            appended(kSystem, "Model_" + std::to_string(i) + " = /" + path + "\n")(dir);
        }
    };
}

std::string letters(size_t count) {
    return std::string(count, 'x');
}

std::vector<Edge> valueEdges() {
    return {
            {"GreatestNumberOfARange", "item-number",
             replaced(kModel, "ModeStatus = 0", "ModeStatus = 2"), ""},
            {"BeyondTheGreatestNumber", "item-number",
             replaced(kModel, "ModeStatus = 0", "ModeStatus = 3"), "tvconfigs/model/first.ini:19"},
            {"NumberOfATvSystem", "item-number",
             replaced(kSystems, "\"SubtitleDefault\" value=\"off\"/>",
                      "\"SubtitleDefault\" value=\"off\"/>\n"
                      "        <Item category=\"[PowerOnMode]\" key=\"ModeStatus\" value=\"3\"/>"),
             "tvconfigs/tvsysmap/systems.xml:7"},
            {"SwitchWithoutAValue", "item-switch",
             replaced(kModel, "DPVR       = true", "DPVR       ="), ""},
            {"NumberWithTwoSigns", "delay-number", written(kPanel, "[SPEAKER]\nHDMI_DELAY = +-5\n"),
             "tvconfigs/audio/panel.ini:2"},
            {"NumberWithAPlus", "delay-number", written(kPanel, "[SPEAKER]\nHDMI_DELAY = +5\n"),
             ""},
            {"DelayOfTheHardware", "delay-number",
             written("tvconfigs/audio/audio_chassis.ini", "[SPEAKER]\nHDMI_DELAY = none\n"),
             "tvconfigs/audio/audio_chassis.ini:2"},
            {"TextOfAnAudioFile", "delay-number", appended(kPanel, "NOTE = built in\n"), ""},
            {"FeatureThatDoesNotCount", "feature-value",
             appended(kFeatures, "persist.vendor.mlk.tv.enable_av=True\n"), ""},
            {"MasterThatIsOn", "feature-without-master", [](const TempDir&) {}, ""},
            {"LongestProperty", "property-value",
             written("data/property/persist.vendor.tarnquill.note", letters(91)), ""},
            {"LongestValueOfAPattern", "own-value",
             all({written("mlktree.toml",
                          "[[key]]\nsection = \"[BACKLIGHT]\"\nkey = \"BL_NOTE\"\n"
                          "type = \"pattern\"\npattern = \"x*\"\n"),
                  appended(kModel, "\n[BACKLIGHT]\nBL_NOTE = " + letters(512) + "\n")}),
             ""},
            {"LongerValueOfAPattern", "own-value",
             all({written("mlktree.toml",
                          "[[key]]\nsection = \"[BACKLIGHT]\"\nkey = \"BL_NOTE\"\n"
                          "type = \"pattern\"\npattern = \"x*\"\n"),
                  appended(kModel, "\n[BACKLIGHT]\nBL_NOTE = " + letters(513) + "\n")}),
             "tvconfigs/model/first.ini:53(1)"},
    };
}

std::vector<Edge> identityEdges() {
    return {
            {"MarkBeforeTheIndex", "byte-order-mark",
             written("impdata/project_id.bin", "\xEF\xBB\xBFPROJECT_ID=1\n"), ""},
            {"MarkBeforeTheBoard", "byte-order-mark",
             written("impdata/board_id.bin",
                     "\xEF\xBB\xBF"
                     "BOARD_ID=/tvconfigs/board/b1.ini\n"),
             ""},
            {"MarkBeforeTheCountry", "byte-order-mark",
             written("tvdata/tvsysmap/country_id.bin",
                     "\xEF\xBB\xBF"
                     "COUNTRY_ID=14\n"),
             ""},
            {"SpaceBeforeTheKeyword", "lookalike",
             written("impdata/project_id.bin", "\xC2\xA0PROJECT_ID\xC2\xA0=1\n"), ""},
            {"SpaceInTheBoardAfterAMark", "lookalike",
             written("impdata/board_id.bin",
                     "\xEF\xBB\xBF"
                     "BOARD_ID=/tvconfigs/board/b1\xC2\xA0.ini\n"),
             "impdata/board_id.bin:1"},
            {"RemarkAfterTheIndex", "identity-number",
             written("impdata/project_id.bin", "PROJECT_ID=1 # the first\n"), ""},
            {"KeywordInACommentBelow", "identity-keyword",
             written("impdata/project_id.bin", "PROJECT_ID=1\n# PROJECT_ID=2\n"), ""},
            {"CountryThatIsNoNumber", "identity-number",
             written("tvdata/tvsysmap/country_id.bin", "COUNTRY_ID=GERMANY\n"),
             "tvdata/tvsysmap/country_id.bin:1"},
            {"CommentedBoard", "commented-keyword",
             written("impdata/board_id.bin", "#BOARD_ID=/tvconfigs/board/b1.ini\n"),
             "impdata/board_id.bin:1"},
            {"CommentedModelWithoutANumber", "model-number",
             appended(kSystem, "# Model_x = /tvconfigs/model/second.ini\n"), ""},
            {"KeywordWithoutAValue", "incomplete-chain",
             replaced(kCustomer, "CUSTOMER_ID = 17", "CUSTOMER_ID ="), "tvconfigs/customer.ini:1"},
            {"ModelWithoutEquals", "no-equals",
             appended(kSystem, "Model_3 /tvconfigs/model/second.ini\n"),
             "tvconfigs/system/line.ini:4"},
    };
}

std::vector<Edge> modelEdges() {
    const std::string mode = "[PowerOnMode]\nModeStatus = 0\n";
    const std::string five = "[OVERSCAN]\nOVERSCAN_PATH = /tvconfigs/panel/overscan.ini\n\n" + mode;
    return {
            {"ItemThatTwoOthersHave", "missing-item", models(3, mode), ""},
            {"ItemThatThreeOthersHave", "missing-item", models(4, mode),
             "tvconfigs/model/first.ini:0"},
            {"ItemThatHalfHave", "rare-lack", models(2, mode), ""},
            {"ItemThatMostHave", "rare-lack", models(3, mode), "tvconfigs/model/first.ini:0"},
            {"ItemThatEveryBoardHas", "missing-item",
             all({models(4, mode), appended(kBoard, mode)}), ""},
            {"UnlikeABoardInAFewFiles", "unlike-other-models",
             all({models(18), appended(kModel, "\n[EXTRA]\nexGamma = 1\n"),
                  appended(kBoard, "[EXTRA]\nexGama = 1\n")}),
             "tvconfigs/board/b1.ini:4"},
            {"UnlikeABoardInManyFiles", "unlike-other-models",
             all({models(19), appended(kModel, "\n[EXTRA]\nexGamma = 1\n"),
                  appended(kBoard, "[EXTRA]\nexGama = 1\n")}),
             ""},
    };
}

// Two files of one kind, and two boards, with these items each.
Edit twins(const std::string& one, const std::string& other) {
    return all({written(kKaraoke, one), written("tvconfigs/karaoke/k2.ini", other),
                replaced("tvconfigs/model/second.ini", "karaoke/karaoke.ini", "karaoke/k2.ini")});
}

Edit boards(const std::string& one, const std::string& other) {
    return all({appended(kBoard, one), written("tvconfigs/board/b2.ini", other)});
}

std::vector<Edge> rivalEdges() {
    const std::string mic = "tvconfigs/karaoke/karaoke.ini";
    const std::string twin = "tvconfigs/karaoke/k2.ini";
    const std::string volume = "[MIC]\nMIC_VOLUME = 1\n";
    return {
            {"WordThatOtherNamesHave", "unlike-other-files",
             twins("[MIC]\nMIC_DELAY = 1\n", "[MIC]\nMIC_DEALY = 1\n"), twin + ":2(2)"},
            {"WordThatOtherNamesHaveInTheSecondFile", "unlike-other-files",
             twins("[MIC]\nMIC_DEALY = 1\n", "[MIC]\nMIC_DELAY = 1\n"), mic + ":2(2)"},
            {"NameThatAnotherKindHas", "unlike-other-files",
             all({twins(volume, "[MIC]\nMIC_VOLMUE = 1\n"),
                  appended("tvconfigs/keys/keys.ini", "[K]\nMIC_VOLUME = 2\n")}),
             twin + ":2(2)"},
            {"NothingTellsTheRightName", "unlike-other-files",
             twins(volume, "[MIC]\nMIC_VOLMUE = 1\n"), twin + ":2(2)"},
            {"SectionOfOneOfTwoFiles", "unlike-other-files",
             twins("[MIC]\nMIC_GAIN = 1\n", "[MCI]\nMIC_GAIN = 1\n"), twin + ":1(1)"},
            {"KeysOfOtherSections", "unlike-other-files",
             twins(volume, "[MUSIC]\nMIC_VOLMUE = 1\n"), ""},
            {"WordsOfTwoLetters", "unlike-other-files",
             twins("[MIC]\nMIC_TX_PIN = 1\n", "[MIC]\nMIC_RX_PIN = 1\n"), ""},
            {"RightNameOfABoard", "unlike-other-boards",
             all({boards("[EXTRA]\nexGama = 1\n", "[EXTRA]\nexGamma = 1\n"),
                  written("tvconfigs/board/b3.ini", "[EXTRA]\nexGamma = 1\n")}),
             "tvconfigs/board/b1.ini:4"},
            {"ABoardThatHasBoth", "unlike-other-boards",
             all({boards("[EXTRA]\nexGama = 1\n", "[EXTRA]\nexGamma = 1\n"),
                  written("tvconfigs/board/b3.ini", "[EXTRA]\nexGamma = 1\nexGama = 2\n")}),
             ""},
            {"NameThatIsDeclared", "unlike-other-boards",
             all({boards("[EXTRA]\nexGama = 1\n", "[EXTRA]\nexGamma = 1\n"),
                  written("mlktree.toml",
                          "[[key]]\nsection = \"[EXTRA]\"\nkey = \"exGamma\"\n"
                          "type = \"integer\"\n")}),
             "tvconfigs/board/b1.ini:4"},
            {"TwoBoardsAgainstTwo", "unlike-other-boards",
             all({boards("[EXTRA]\nexGama = 1\n", "[EXTRA]\nexGamma = 1\n"),
                  written("tvconfigs/board/b3.ini", "[EXTRA]\nexGamma = 1\n"),
                  written("tvconfigs/board/b4.ini", "[EXTRA]\nexGama = 1\n")}),
             ""},
            {"KeysOfOtherSectionsOfBoards", "unlike-other-boards",
             boards("[EXTRA]\nexGama = 1\n", "[OTHER]\nexGamma = 1\n"), ""},
    };
}

std::vector<Edge> pathEdges() {
    // "/tvconfigs/audio/" and ".ini" are 21 bytes, "/tvconfigs/tv/" and ".config" too.
    const auto audio = [](size_t size) { return "tvconfigs/audio/" + letters(size - 21) + ".ini"; };
    const auto karaoke = [](size_t size) {
        return "tvconfigs/karaoke/" + letters(size - 4) + ".ini";
    };
    const auto features = [](size_t size) {
        return "tvconfigs/tv/" + letters(size - 21) + ".config";
    };
    const std::string avr = "/tvconfigs/audio/avr_default.ini";
    const std::string song = "/tvconfigs/karaoke/karaoke.ini";
    return {
            {"LongestPathOfAnAvr", "long-path",
             all({written(audio(127), ""), replaced(kModel, avr, "/" + audio(127))}), ""},
            {"LongerPathOfAnAvr", "long-path",
             all({written(audio(128), ""), replaced(kModel, avr, "/" + audio(128))}),
             "tvconfigs/model/first.ini:31"},
            {"LongestNameOfAKaraokeFile", "long-path",
             all({written(karaoke(127), ""), replaced(kModel, song, "/" + karaoke(127))}), ""},
            {"LongerNameOfAKaraokeFile", "long-path",
             all({written(karaoke(128), ""), replaced(kModel, song, "/" + karaoke(128))}),
             "tvconfigs/model/first.ini:34"},
            {"LongestFeaturesOfACountry", "long-path",
             all({written(features(127), ""),
                  replaced(kCountryMap, "/tvconfigs/tv/tv_eu.config", "/" + features(127))}),
             ""},
            {"LongerFeaturesOfACountry", "long-path",
             all({written(features(128), ""),
                  replaced(kCountryMap, "/tvconfigs/tv/tv_eu.config", "/" + features(128))}),
             "tvconfigs/tvsysmap/countries.xml:5"},
            {"FileInImpdata", "missing-file", replaced(kModel, song, "/impdata/karaoke/oem.ini"),
             "tvconfigs/model/first.ini:34"},
            {"AudioNameThatABoardReplaces", "same-audio-name",
             all({replaced(kModel, "/audio/ic.ini", "/audio/panel.ini"),
                  appended(kBoard, "[AUDIO]\nAUDIO_CONFIG_IC_PATH = /tvconfigs/audio/ic.ini\n")}),
             ""},
            {"AudioNameOfABoard", "same-audio-name",
             appended(kBoard, "[AUDIO]\nAUDIO_CONFIG_IC_PATH = /tvconfigs/audio/panel.ini\n"),
             "tvconfigs/board/b1.ini:4(29)"},
            {"ThreeMissingFilesOfAFolderWithFiles", "missing-file",
             appended(kModel,
                      "\n[EDID]\np1 = /tvconfigs/panel/p1.bin\n"
                      "p2 = /tvconfigs/panel/p2.bin\np3 = /tvconfigs/panel/p3.bin\n"),
             "tvconfigs/model/first.ini:53 tvconfigs/model/first.ini:54 "
             "tvconfigs/model/first.ini:55"},
            {"UnusedBesideAConflictInXmlOfAnyName", "unused-file",
             all({replaced(kModel, kSystems, "tvconfigs/tvsysmap/systems.cfg"),
                  written("tvconfigs/tvsysmap/systems.cfg",
                          "<<<<<<< HEAD\n<CountryTvSysMapXML/>\n=======\n>>>>>>> topic\n"),
                  written("tvconfigs/eq/a.bin", "")}),
             ""},
            {"UnusedBesideAConflictInText", "unused-file",
             all({replaced(kModel, kPanel, "tvconfigs/audio/panel.xml.ini"),
                  written("tvconfigs/audio/panel.xml.ini",
                          "<<<<<<< HEAD\nHDMI_DELAY = 5\n=======\n>>>>>>> topic\n"),
                  written("tvconfigs/eq/a.bin", "")}),
             "tvconfigs/eq/a.bin:0"},
            {"HiddenFile", "unused-file", written("tvconfigs/.editor/state", ""), ""},
            {"HiddenFolder", "unsearched-folder", written("tvconfigs/.editor/state", ""), ""},
            {"ThreeUnusedFilesOfAFolder", "unused-file",
             all({written("tvconfigs/eq/a.bin", ""), written("tvconfigs/eq/b.bin", ""),
                  written("tvconfigs/eq/c.bin", "")}),
             "tvconfigs/eq/a.bin:0 tvconfigs/eq/b.bin:0 tvconfigs/eq/c.bin:0"},
            {"FolderOfBoardsWithoutABoard", "unused-file",
             [](const TempDir& dir) {
                 std::filesystem::remove(dir.path("tvconfigs/board/b1.ini"));
                 dir.write("impdata/board_id.bin", "BOARD_ID=DEFAULT_BOARD_ID\n");
                 dir.write("tvconfigs/board/readme.txt", "");
             },
             "tvconfigs/panel/ssc.ini:0"},
            {"ThirtyTwoFoldersInEachOther", "unsearched-folder",
             [](const TempDir& dir) {
                 std::string folder = "tvconfigs";
                 for (int i = 1; i < 32; ++i) {
                     folder += "/d";
                 }
                 dir.write(folder + "/file", "");
             },
             ""},
    };
}

std::vector<Edge> lineEdges() {
    const std::string four = "ger,German\nfre,French\nita,Italian\nspa,Spanish\n";
    return {
            {"TabAtTheEndOfAValue", "tab",
             replaced(kModel, "ModeStatus = 0\n", "ModeStatus = 0\t\n"),
             "tvconfigs/model/first.ini:19"},
            {"BrokenSectionOfAnAudioFile", "broken-section",
             written(kPanel, "SPEAKER]\nHDMI_DELAY = 5\n"), "tvconfigs/audio/panel.ini:1"},
            {"UnendedComment", "unended-line", appended(kFeatures, "# the end"), ""},
            {"UnendedFeature", "unended-line",
             appended(kFeatures, "persist.vendor.mlk.tv.enable_av=true"),
             "tvconfigs/tv/tv_eu.config:27"},
            {"ThreeOfFourLanguages", "language-name",
             written(kLanguages, "ger\neng\nfre\nita\nspa\npor\nDAN\nSWE\n"),
             "tvconfigs/language/language.txt:7 tvconfigs/language/language.txt:8"},
            {"FewerThanThreeOfFourLanguages", "language-name",
             written(kLanguages, "ger\neng\nfre\nita\nspa\nDAN\nSWE\n"), ""},
            {"FourLanguages", "language-name", written(kLanguages, "ger\neng\nfre\nita\nDAN\n"),
             "tvconfigs/language/language.txt:5"},
            {"ThreeLanguages", "language-name", written(kLanguages, "ger\neng\nfre\nDAN\n"), ""},
            {"JoinedLanguages", "language-name",
             written(kLanguages, four + "dan,Danishswe,Swedish\nnor,Norwegian fin,Finnish\n"),
             "tvconfigs/language/language.txt:5 tvconfigs/language/language.txt:6"},
            {"CommaInTheNameOfALanguage", "language-name",
             written(kLanguages, four + "chi,Chinese,Simplified\nzho,Chinese,traditional\n"
                                        "por,Portuguese,Brazil\neng,eng,English\n"),
             ""},
            {"CodesOfTwoLetters", "language-name",
             written(kLanguages,
                     "de,German\nen,English\nfr,French\nit,Italian\nno,Norwegian,Ancient\n"),
             ""},
    };
}

class RuleEdges : public ::testing::TestWithParam<Edge> {};

TEST_P(RuleEdges, HasItsFindings) {
    expectPlaces(GetParam());
}

std::vector<Edge> edges() {
    std::vector<Edge> every;
    for (const auto& some :
         {valueEdges(), identityEdges(), modelEdges(), rivalEdges(), pathEdges(), lineEdges()}) {
        every.insert(every.end(), some.begin(), some.end());
    }
    return every;
}

INSTANTIATE_TEST_SUITE_P(Each, RuleEdges, ::testing::ValuesIn(edges()),
                         [](const auto& param) { return std::string(param.param.name); });

class RuleEdgesTest : public ::testing::Test {
  protected:
    RuleEdgesTest() { copySoundTree(mDir); }
    const TempDir mDir;
};

TEST(QuotedTest, ATextOfSixtyBytesIsWhole) {
    EXPECT_EQ(mlk::tree::quoted(letters(60)), "\"" + letters(60) + "\"");
    EXPECT_EQ(mlk::tree::quoted(letters(61)), "\"" + letters(60) + "...\"");
}

TEST_F(RuleEdgesTest, AGivenPropertyHidesItsFile) {
    mDir.write("data/property/persist.vendor.tarnquill.note", letters(92));
    EXPECT_NE(placesOf(mDir, "property-value"), "");
    EXPECT_EQ(placesOf(mDir, "property-value", "persist.vendor.tarnquill.note=short"), "");
}

// What five sections of a model lack is one finding, what four lack is one for each.
TEST_F(RuleEdgesTest, AModelThatLacksManySectionsHasOneFinding) {
    models(4)(mDir);
    std::string model = mDir.read(kModel);
    const char* const sections[] = {"[PowerOnMode]\nModeStatus = 0\n",
                                    "[OVERSCAN]\nOVERSCAN_PATH = /tvconfigs/panel/overscan.ini\n",
                                    "[KEY]\nKEY_CONFIG_PATH = /tvconfigs/keys/keys.ini\n",
                                    "[MODEL_REGION_NAME_CFG]\nREGION_NAME = EUROPE\n"};
    for (const char* const section : sections) {
        model.erase(model.find(section), std::string(section).size());
    }
    mDir.write(kModel, model);
    const std::string place = "tvconfigs/model/first.ini:0";
    EXPECT_EQ(placesOf(mDir, "missing-item"), place + " " + place + " " + place + " " + place);
    const std::string fifth = "[CLIENT_TYPE_INFO]\nCLIENT_TYPE = RETAIL\n";
    mDir.write(kModel, model.erase(model.find(fifth), fifth.size()));
    EXPECT_EQ(placesOf(mDir, "missing-item"), place);
}

}  // namespace

}  // namespace mlk::tree
