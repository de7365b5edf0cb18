#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>

#include "host/testing/Process.h"
#include "host/testing/QuietLog.h"
#include "host/testing/TempDir.h"
#include "tools/common/Text.h"
#include "tools/mlktree/diff/LineDiff.h"
#include "tools/mlktree/tests/Harness.h"
#include "tools/mlktree/tests/ToldAnswers.h"

namespace mlk::tree {

namespace {

namespace fs = std::filesystem;

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::Process;
using testing::TempDir;

constexpr const char* kModel = "tvconfigs/model/TRQ55_M2_LATAM.ini";

// Replaces the first occurrence that stands in no comment.
void replaceIn(const TempDir& dir, const std::string& file, const std::string& from,
               const std::string& to) {
    std::string text = dir.read(file);
    size_t at = text.find(from);
    while (at != std::string::npos && text[text.rfind('\n', at) + 1] == '#') {
        at = text.find(from, at + 1);
    }
    ASSERT_NE(at, std::string::npos) << from << " in " << file;
    text.replace(at, from.size(), to);
    dir.write(file, text);
}

/** A copy of the sample to change. */
class DiffTest : public ::testing::Test {
  protected:
    DiffTest() { fs::copy(samplePath(), mDir.path(), fs::copy_options::recursive); }

    void replace(const std::string& file, const std::string& from, const std::string& to) {
        replaceIn(mDir, file, from, to);
    }
    Outcome diff(std::vector<std::string> words = {}) const {
        words.insert(words.begin(), {"diff", samplePath(), mDir.path()});
        return runMlktree(words);
    }
    json changes() const {
        const Outcome outcome = diff({"--format", "json"});
        EXPECT_EQ(outcome.err, "");
        return json::parse(outcome.out)["changes"];
    }

    const testing::QuietLog mQuiet;
    const TempDir mDir;
};

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

TEST_F(DiffTest, TwoSets) {
    const std::string tree = ",tree=" + samplePath();
    const Outcome models = runMlktree({"diff", "model=6" + tree, "model=7" + tree});
    EXPECT_EQ(models.status, 1);
    EXPECT_THAT(models.out, HasSubstr("  [PANEL] m_pPanelName\n    - OSMR-65U120-D2  "));
    EXPECT_THAT(models.out, ::testing::Not(HasSubstr("all boards")));
    const Outcome same = runMlktree({"diff", "--tree", samplePath(), "model=6", "model=6"});
    EXPECT_EQ(same.out, "no difference\n");
    const Outcome countries = runMlktree({"diff", "--tree", samplePath(), "model=1,country=GERMANY",
                                          "model=1,country=FRANCE", "--format", "json"});
    EXPECT_EQ(countries.status, 1) << countries.err;
    // The other side means the same set.
    replace("tvconfigs/model/TRQ65_C3_UK.ini", "OSMR-65U120-D2", "NEW");
    EXPECT_EQ(runMlktree({"diff", "model=7" + tree, mDir.path()}).out, "no difference\n");
    const Outcome changed = runMlktree({"diff", "model=6" + tree, mDir.path()});
    EXPECT_THAT(changed.out, HasSubstr("+ NEW"));
    EXPECT_THAT(changed.out, HasSubstr("1 difference\n"));
    EXPECT_THAT(runMlktree({"diff", "model=6" + tree, mDir.path(), "--format", "markdown"}).out,
                HasSubstr("| name | before | after |\n|---|---|---|\n"));
}

TEST_F(DiffTest, SnapshotsStandForTrees) {
    const TempDir out;
    const std::string snapshot = out.path("old.json");
    ASSERT_EQ(runMlktree({"snapshot", samplePath(), "-o", snapshot}).status, 0);
    EXPECT_EQ(runMlktree({"diff", snapshot, samplePath()}).out, "no difference\n");
    EXPECT_EQ(runMlktree({"diff", samplePath(), snapshot}).status, 0);
    replace(kModel, "BRYL-55U60-C1", "LC999");
    const Outcome outcome = runMlktree({"diff", snapshot, mDir.path(), "--format", "json"});
    const json change = json::parse(outcome.out)["changes"][0];
    EXPECT_EQ(change["a"], json::parse(R"({"value":"BRYL-55U60-C1","file":null,"line":null})"));
    EXPECT_EQ(change["b"]["line"], 29);
    const std::string set = "model=3,board=skerry_b1.ini,country=CHILE,tree=";
    EXPECT_THAT(runMlktree({"diff", set + snapshot, mDir.path()}).out, HasSubstr("+ LC999"));
    EXPECT_EQ(runMlktree({"diff", set + snapshot, samplePath()}).out, "no difference\n");
    const Outcome several = runMlktree({"diff", "model=3,tree=" + snapshot, mDir.path()});
    EXPECT_EQ(several.status, 2);
    EXPECT_THAT(several.err, HasSubstr("fits several sets of the snapshot, model=3,board=skerry_b1"
                                       ".ini,country=ANDORRA and "));
    const Outcome none = runMlktree({"diff", "model=33,tree=" + snapshot, mDir.path()});
    EXPECT_EQ(none.status, 2);
}

TEST_F(DiffTest, ACustomerThatIsGoneReachesItsModels) {
    fs::copy(mDir.path("tvconfigs/customer.ini"), mDir.path("tvconfigs/customer_b.ini"));
    const TempDir out;
    std::vector<std::string> words = {"snapshot",
                                      "--tree",
                                      mDir.path(),
                                      "--board",
                                      "skerry_b1.ini",
                                      "--country",
                                      "CHILE",
                                      "-o",
                                      out.path("one.json"),
                                      "--customer",
                                      "tvconfigs/customer.ini"};
    ASSERT_EQ(runMlktree(words).status, 0);
    words[8] = out.path("two.json");
    words.insert(words.end(), {"--customer", "tvconfigs/customer_b.ini"});
    ASSERT_EQ(runMlktree(words).status, 0);
    words = {"diff", out.path("two.json"), out.path("one.json")};
    EXPECT_THAT(runMlktree(words).out,
                HasSubstr("  tvconfigs/customer_b.ini\n    - TARNQUILL\n"
                          "    in models 1 to 7 of tvconfigs/customer_b.ini"));
    words.insert(words.end(), {"--format", "json"});
    const json difference = json::parse(runMlktree(words).out);
    std::vector<std::string> kinds;
    for (const json& change : difference["changes"]) {
        kinds.push_back(change["kind"]);
        const std::string last = change["sets"].back();
        EXPECT_THAT(last, HasSubstr(",customer=tvconfigs/customer_b.ini")) << change;
    }
    EXPECT_EQ(kinds.size(), 8U) << "seven models and their customer";
    EXPECT_EQ(std::count(kinds.begin(), kinds.end(), "customer"), 1);
}

TEST_F(DiffTest, PropertiesOfTheCommandLineCountOnBothSides) {
    mDir.write("data/property/persist.vendor.mlk.enstr", "false");
    EXPECT_EQ(diff().status, 1);
    EXPECT_THAT(diff().out, HasSubstr("Framework switches\n  strEnabled\n    - true   "
                                      "data/property/persist.vendor.mlk.enstr:1\n"));
    EXPECT_EQ(diff({"--prop", "persist.vendor.mlk.enstr=true"}).status, 0);
}

TEST_F(DiffTest, WritesToNeitherTree) {
    const auto list = [](const std::string& root) {
        std::map<std::string, std::pair<fs::file_time_type, uintmax_t>> all;
        for (const auto& entry : fs::recursive_directory_iterator(root)) {
            all[entry.path().string()] = {entry.last_write_time(),
                                          entry.is_regular_file() ? entry.file_size() : 0};
        }
        return all;
    };
    const auto before = list(mDir.path());
    (void)diff();
    (void)runMlktree({"diff", "model=1,tree=" + mDir.path(), "model=2,tree=" + mDir.path()});
    (void)runMlktree({"snapshot", mDir.path()});
    EXPECT_EQ(list(mDir.path()), before);
}

/** A command line that cannot be used. */
struct Wrong {
    std::vector<std::string> words;
    std::string message;
};

TEST_F(DiffTest, WrongOperandsSayWhatWouldBeRight) {
    const std::string sample = samplePath();
    const std::string file = mDir.path("tvconfigs/customer.ini");
    const Wrong kWrong[] = {
            {{}, "diff takes two operands, what was and what is"},
            {{sample}, "diff takes two operands, what was and what is"},
            {{sample, "nowhere"}, "there is no file or folder \"nowhere\"; expected is a folder "},
            {{sample, mDir.path("tvconfigs")}, "there is no folder tvconfigs in it"},
            {{sample, file}, file + " is no snapshot of mlktree: it is no JSON"},
            {{"modle=6", "model=6"}, "\"modle=6\" is no part of a set; the parts are model=N, "},
            {{"modle=6", "model=6"}, "did you mean model?"},
            {{"model=6,GERMANY", sample}, "\"GERMANY\" is no part of a set"},
            {{"model=", sample}, "model= has no value"},
            {{"model=6,model=7", sample}, "model= is there twice"},
            {{"model=x,tree=" + sample, sample}, "--model takes the index of a model"},
            {{"model=77,tree=" + sample, sample}, "no line of the system file has this index"},
            {{"board=none.ini,tree=" + sample, sample}, "--board none.ini: there is no file"},
            {{"country=OZ,tree=" + sample, sample}, "--country OZ: the service knows no such"},
            {{"model=6,tree=nowhere", sample}, "there is no file or folder \"nowhere\""},
            {{"rev:HEAD", sample, "--tree", sample + "/.."}, ""},
            {{"model=6", "model=7", "--tree", mDir.path("tvconfigs")},
             "tvconfigs: there is no folder tvconfigs in it; --tree names the tree"},
            {{sample, sample, "-o", ""}, "mlktree: \"\" cannot be written: No such file"},
    };
    for (const Wrong& wrong : kWrong) {
        std::vector<std::string> words = wrong.words;
        words.insert(words.begin(), "diff");
        const Outcome outcome = runMlktree(words, sample);
        EXPECT_EQ(outcome.status, 2) << joined(wrong.words);
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.err, HasSubstr(wrong.message)) << joined(wrong.words);
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    }
}

}  // namespace

}  // namespace mlk::tree
