#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>

#include "host/testing/QuietLog.h"
#include "host/testing/TempDir.h"
#include "tools/mlktree/diff/LineDiff.h"
#include "tools/mlktree/tests/DiffFixture.h"
#include "tools/mlktree/tests/Harness.h"
#include "tools/mlktree/tests/ToldAnswers.h"

namespace mlk::tree {

namespace {

namespace fs = std::filesystem;

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::TempDir;

TEST_F(DiffTest, OfEachSetWithItselfIsEmpty) {
    const Answered sample(samplePath());
    const Answered copy(mDir.path());
    ASSERT_EQ(sample.answers->sets.size(), copy.answers->sets.size());
    for (size_t i = 0; i < sample.answers->sets.size(); ++i) {
        const AnswerSet& set = sample.answers->sets[i];
        ASSERT_THAT(diffSets(*sample.answers, set, *sample.answers, set).changes, IsEmpty());
        if (i % 50 == 0) {
            ASSERT_THAT(
                    diffSets(*sample.answers, set, *copy.answers, copy.answers->sets[i]).changes,
                    IsEmpty())
                    << nameOf(*sample.answers, set);
        }
    }
    EXPECT_THAT(diffLines(*sample.answers, *sample.answers).changes, IsEmpty());
    EXPECT_THAT(diffLines(*sample.answers, *copy.answers).changes, IsEmpty());
    const Outcome outcome = diff();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "no difference\n");
}

TEST_F(DiffTest, CommentsOrderAndFormattingAreNoDifference) {
    replace(kModel, "m_pPanelName     = \"BRYL-55U60-C1\"", "# here\n\nm_pPanelName=BRYL-55U60-C1");
    // A section may come again, and its items in another order.
    std::string text = mDir.read(kModel);
    const size_t panel = text.find("[PANEL]");
    const size_t next = text.find("\n[", panel) + 1;
    text = text + text.substr(panel, next - panel);
    text.erase(panel, next - panel);
    mDir.write(kModel, text);
    EXPECT_EQ(diff().out, "no difference\n");
}

TEST_F(DiffTest, GroupsByChangeWithTheSetsItReaches) {
    replace(kModel, "BRYL-55U60-C1", "LC999");
    const std::string model6 = "tvconfigs/model/TRQ65_C3_UK.ini";
    replace(model6, "[PANEL]", "[PANEL]\nNEW_KEY = a|b`c");
    replace("tvconfigs/model/TRQ75_C4_APAC.ini", "[PANEL]", "\n\n[PANEL]\nNEW_KEY = a|b`c");
    const Outcome text = diff();
    EXPECT_EQ(text.status, 1);
    EXPECT_EQ(text.out,
              "Items\n"
              "  [PANEL] NEW_KEY\n"
              "    + a|b`c  tvconfigs/model/TRQ65_C3_UK.ini:27\n"
              "    in models 6, 7; all boards\n"
              "  [PANEL] m_pPanelName\n"
              "    - BRYL-55U60-C1  tvconfigs/model/TRQ55_M2_LATAM.ini:29\n"
              "    + LC999          tvconfigs/model/TRQ55_M2_LATAM.ini:29\n"
              "    in model 3; all boards\n"
              "\n"
              "2 differences\n");
    const Outcome coloured = diff({"--color", "always"});
    EXPECT_THAT(coloured.out, HasSubstr("    \033[32m+ LC999\033[0m  "));
    EXPECT_EQ(diff({"--format", "markdown"}).out,
              "**2 differences** between `" + samplePath() + "` and `" + mDir.path() +
                      "`\n"
                      "\n"
                      "### Items\n"
                      "\n"
                      "| name | before | after | sets |\n"
                      "|---|---|---|---|\n"
                      "| `[PANEL] NEW_KEY` | - | ``a\\|b`c`` "
                      "(`tvconfigs/model/TRQ65_C3_UK.ini:27`) | `models 6, 7; all boards` |\n"
                      "| `[PANEL] m_pPanelName` | `BRYL-55U60-C1` "
                      "(`tvconfigs/model/TRQ55_M2_LATAM.ini:29`) | `LC999` "
                      "(`tvconfigs/model/TRQ55_M2_LATAM.ini:29`) | `model 3; all boards` |\n");
    const json all = json::parse(diff({"--format", "json"}).out);
    EXPECT_EQ(all["version"], 1);
    EXPECT_EQ(all["a"], samplePath());
    EXPECT_EQ(all["b"], mDir.path());
    EXPECT_EQ(all["same"], false);
    EXPECT_EQ(all["changes"], json::parse(R"([
        {"kind":"item","name":"[PANEL] NEW_KEY","a":null,
         "b":{"value":"a|b`c","file":"tvconfigs/model/TRQ65_C3_UK.ini","line":27},
         "sets":["model=6","model=7"]},
        {"kind":"item","name":"[PANEL] m_pPanelName",
         "a":{"value":"BRYL-55U60-C1","file":"tvconfigs/model/TRQ55_M2_LATAM.ini","line":29},
         "b":{"value":"LC999","file":"tvconfigs/model/TRQ55_M2_LATAM.ini","line":29},
         "sets":["model=3"]}])"));
}

TEST_F(DiffTest, TellsADelayOnceForAllReceivers) {
    // The first of two lines counts.
    replace("tvconfigs/audio/panel_bryl_uhd60.ini", "[ARC]", "[ARC]\nATV_DELAY = 240");
    EXPECT_EQ(diff().out,
              "Sound delays\n"
              "  [ARC] ATV_DELAY\n"
              "    - 89   tvconfigs/audio/panel_bryl_uhd60.ini:31\n"
              "    + 243  tvconfigs/audio/panel_bryl_uhd60.ini:30\n"
              "    59 -> 213 with ARC\n"
              "    77 -> 231 with AVR_0AFADE_Sundra7.ini\n"
              "    47 -> 201 with AVR_0EC0DE_Orlan900.ini\n"
              "    in models 3, 4; all boards\n"
              "\n"
              "1 difference\n");
    EXPECT_THAT(diff({"--format", "markdown"}).out,
                HasSubstr("| `[ARC] ATV_DELAY`, `59 -> 213 with ARC`, `77 -> 231 with "
                          "AVR_0AFADE_Sundra7.ini`, `47 -> 201 with AVR_0EC0DE_Orlan900.ini` | "
                          "`89` ("));
    // A program asks for one receiver.
    const json all = changes();
    ASSERT_EQ(all.size(), 4U);
    EXPECT_EQ(all[1]["name"], "[ARC] ATV_DELAY with ARC");
    EXPECT_EQ(all[3]["b"]["value"], "201");
    // With a receiver whose own file changes, too, it becomes another difference.
    replace("tvconfigs/audio/AVR_0EC0DE_Orlan900.ini", "ATV_DELAY       = -12", "ATV_DELAY = -10");
    const std::string both = diff({"--model", "3"}).out;
    EXPECT_THAT(both, HasSubstr("    77 -> 231 with AVR_0AFADE_Sundra7.ini\n    in all sets\n"));
    EXPECT_THAT(both, HasSubstr("  [ARC] ATV_DELAY with AVR_0EC0DE_Orlan900.ini\n    - 47 "));
    EXPECT_THAT(both, HasSubstr("\n2 differences\n"));
}

TEST_F(DiffTest, TellsOnceWhatAllReceiversShare) {
    replace("tvconfigs/audio/panel_osmr_hd60.ini", "ATV_DELAY", "# ATV_DELAY");
    EXPECT_THAT(diff({"--model", "1"}).out,
                HasSubstr("\n    the same with ARC, AVR_0AFADE_Sundra7.ini, "
                          "AVR_0EC0DE_Orlan900.ini\n    in all sets\n\n1 difference\n"));
}

TEST_F(DiffTest, AnItemMayHaveNoName) {
    mDir.write(kModel, "= nameless\n" + mDir.read(kModel));
    EXPECT_EQ(diff().out,
              "Items\n"
              "  (empty)\n"
              "    + nameless  tvconfigs/model/TRQ55_M2_LATAM.ini:1\n"
              "    in model 3; all boards\n"
              "\n"
              "1 difference\n");
    EXPECT_THAT(diff({"--format", "markdown"}).out, HasSubstr("\n| (empty) | - | `nameless` ("));
    EXPECT_EQ(changes()[0]["name"], "");
}

TEST_F(DiffTest, WritesToAFile) {
    const TempDir out;
    const Outcome outcome = diff({"-o", out.path("diff.txt")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(out.read("diff.txt"), "no difference\n");
}

TEST_F(DiffTest, ABoardReplacesWhatAModelHas) {
    // The board has this item, so the model's value counts for no set.
    const std::string board = "tvconfigs/board/skerry_b1.ini";
    replace(board, "[DIGITAL_AMPLIFIER_CFG]",
            "[PANEL]\nm_pPanelName = OF-B1\n[DIGITAL_AMPLIFIER_CFG]");
    const TempDir before;
    fs::copy(mDir.path(), before.path(), fs::copy_options::recursive);
    replace(kModel, "BRYL-55U60-C1", "LC999");
    const json found =
            json::parse(runMlktree({"diff", before.path(), mDir.path(), "--format", "json"}).out);
    ASSERT_EQ(found["changes"].size(), 1U);
    EXPECT_EQ(found["changes"][0]["sets"], json({"model=3,board=skerry_b2.ini"}));
    const json all = changes();
    ASSERT_EQ(all.size(), 8U) << all.dump(1);
    for (const json& change : all) {
        EXPECT_EQ(change["name"], "[PANEL] m_pPanelName");
    }
}

TEST_F(DiffTest, AnItemOfACountryReachesTheCountriesOfItsTvSystem) {
    const std::string file = "tvconfigs/tvsysmap/tvsys_uk.xml";
    const json before = changes();
    EXPECT_TRUE(before.empty());
    std::string text = mDir.read(file);
    const size_t value = text.find("value=\"", text.find("<Item"));
    text.insert(value + 7, "X");
    mDir.write(file, text);
    const json all = changes();
    ASSERT_GE(all.size(), 1U);
    EXPECT_EQ(all[0]["kind"], "item");
    EXPECT_EQ(all[0]["b"]["file"], file);
    EXPECT_THAT(all[0]["sets"][0].get<std::string>(), HasSubstr(",country="));
}

TEST_F(DiffTest, ModelsBoardsAndCountriesComeAndGo) {
    replace("tvconfigs/system/tarnquill_skerry.ini", "Model_3", "Model_13");
    // board_id.bin names the other one, which so stays a board in any case.
    fs::rename(mDir.path("tvconfigs/board/skerry_b1.ini"), mDir.path("tvconfigs/board/b9.ini"));
    std::map<std::string, json> all;
    for (const json& change : changes()) {
        all[change["kind"].get<std::string>() + " " + change["name"].get<std::string>()] = change;
    }
    EXPECT_TRUE(all.at("model model 3")["b"].is_null());
    EXPECT_EQ(all.at("model model 3")["a"]["value"], "/tvconfigs/model/TRQ55_M2_LATAM.ini");
    EXPECT_EQ(all.at("model model 3")["a"]["file"], "tvconfigs/system/tarnquill_skerry.ini");
    EXPECT_EQ(all.at("model model 3")["sets"], json({"model=3"}));
    EXPECT_TRUE(all.at("model model 13")["a"].is_null());
    EXPECT_TRUE(all.at("board board skerry_b1.ini")["b"].is_null());
    EXPECT_EQ(all.at("board board b9.ini")["b"]["value"], "/tvconfigs/board/b9.ini");
    EXPECT_EQ(all.at("customer highest index")["b"]["value"], "13");
}

TEST_F(DiffTest, PlansChangeByChannels) {
    const std::string plan = "tvconfigs/freqtables/dtv/freqtable_eu";
    std::string text = mDir.read(plan);
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    // The first three channels that count.
    std::vector<size_t> channels;
    for (size_t i = 0; i < lines.size() && channels.size() < 4; ++i) {
        if (!lines[i].empty() && lines[i][0] >= '0' && lines[i][0] <= '9') {
            channels.push_back(i);
        }
    }
    ASSERT_EQ(channels.size(), 4U);
    std::swap(lines[channels[0]], lines[channels[1]]);
    lines.erase(lines.begin() + static_cast<ptrdiff_t>(channels[3]));
    lines.emplace_back("99 8000000 999000 E99 DVBT");
    text.clear();
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    mDir.write(plan, text);
    std::vector<std::string> told;
    for (const json& change : changes()) {
        if (change["name"].get<std::string>().compare(0, 12, "DTV_ANTENNA ") == 0) {
            told.push_back(change["name"].get<std::string>() + ": " +
                           (change["a"].is_null() ? "-" : change["a"]["value"].get<std::string>()) +
                           " > " +
                           (change["b"].is_null() ? "-" : change["b"]["value"].get<std::string>()));
        }
    }
    EXPECT_EQ(told.size(), 3U);
    EXPECT_THAT(told, ::testing::Contains(HasSubstr("at place 2")));
    EXPECT_THAT(told, ::testing::Contains(HasSubstr("DTV_ANTENNA 99: - > E99, 999000 kHz")));
    EXPECT_THAT(told, ::testing::Contains(HasSubstr(" > -")));
}

TEST_F(DiffTest, ChannelThatIsRepeatedHasOneNameInBothDirections) {
    const std::string plan = "tvconfigs/freqtables/dtv/freqtable_dvbt_uhf";
    std::string text = mDir.read(plan);
    const size_t first = text.find("\n21,");
    ASSERT_NE(first, std::string::npos);
    text.insert(first + 1, "30, 8000000, 546000, E30, DVB_AUTO\n");
    mDir.write(plan, text);
    const auto namesOf = [](const Outcome& outcome, const char* side) {
        std::vector<std::string> names;
        const json told = json::parse(outcome.out);
        for (const json& change : told["changes"]) {
            EXPECT_TRUE(change[side].is_null()) << change["name"];
            names.push_back(change["name"]);
        }
        return names;
    };
    const std::vector<std::string> added = namesOf(diff({"--format", "json"}), "a");
    const std::vector<std::string> removed =
            namesOf(runMlktree({"diff", mDir.path(), samplePath(), "--format", "json"}), "b");
    EXPECT_EQ(removed, added);
    // In the plan that has it, it is the first one.
    EXPECT_THAT(added, ::testing::Contains("DTV_ANTENNA 30"));
    EXPECT_THAT(added, ::testing::Not(::testing::Contains("DTV_ANTENNA 30 (2)")));
}

TEST_F(DiffTest, CountryThatStaysInPlaceIsNoChange) {
    mDir.write("tvconfigs/country/cltv_latam.txt", "CHILE,CL\nARGENTINA,AR\nBRAZIL,BR\n");
    std::vector<std::string> moved;
    for (const json& change : changes()) {
        EXPECT_NE(change["a"]["value"], change["b"]["value"]) << change["name"];
        moved.push_back(change["name"]);
    }
    EXPECT_THAT(moved, ::testing::UnorderedElementsAre(HasSubstr("BRAZIL"), HasSubstr("CHILE")));
}

TEST_F(DiffTest, BytesOfAFileCountForThoseWhoNameItOnBothSides) {
    const std::string file = "tvconfigs/bootanimation/tarnquill.zip";
    mDir.write(file, mDir.read(file) + "x");
    replace(kModel, "/tvconfigs/bootanimation/tarnquill.zip", "/tvconfigs/bootanimation/other");
    const json all = changes();
    ASSERT_EQ(all.size(), 2U) << all.dump(1);
    EXPECT_EQ(all[0]["kind"], "item");
    EXPECT_EQ(all[0]["sets"], json({"model=3"}));
    EXPECT_EQ(all[1]["kind"], "file");
    EXPECT_EQ(all[1]["name"], "/" + file);
    EXPECT_EQ(all[1]["sets"],
              json({"model=1", "model=2", "model=4", "model=5", "model=6", "model=7"}));
}

// What the service does not know, it answers as it answers these.
TEST_F(DiffTest, ZeroIsNoDifferenceAndAReceiverWithoutAFileIsAnyOther) {
    for (const char* const file : {"karaoke/karaoke_home.ini", "audio/AVR_0AFADE_Sundra7.ini"}) {
        const std::string path = std::string("tvconfigs/") + file;
        mDir.write(path, mDir.read(path) + "\n[NEW]\nZERO=0\n");
    }
    EXPECT_EQ(diff().out, "no difference\n");
    fs::remove(mDir.path("tvconfigs/audio/AVR_0EC0DE_Orlan900.ini"));
    const json all = changes();
    ASSERT_FALSE(all.empty());
    for (const json& change : all) {
        EXPECT_THAT(change["name"], ::testing::EndsWith(" with AVR_0EC0DE_Orlan900.ini"));
        EXPECT_FALSE(change["b"].is_null()) << change;
    }
}

TEST_F(DiffTest, APlanThatIsGoneIsOneChange) {
    fs::remove(mDir.path("tvconfigs/freqtables/dtv/freqtable_isdb"));
    const json all = changes();
    ASSERT_EQ(all.size(), 2U) << all.dump(1);
    EXPECT_EQ(all[0]["name"], "DTV_ANTENNA");
    EXPECT_EQ(all[1]["name"], "DTV_CABLE AUTO");
    EXPECT_THAT(all[0]["a"]["value"].get<std::string>(), ::testing::EndsWith(" channels"));
    EXPECT_EQ(all[0]["a"]["file"], "tvconfigs/freqtables/country_freq_map.xml");
    EXPECT_TRUE(all[0]["b"].is_null());
}

}  // namespace

}  // namespace mlk::tree
