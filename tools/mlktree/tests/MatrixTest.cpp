// `mlktree matrix`.

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <sstream>

#include "host/testing/Process.h"
#include "host/testing/QuietLog.h"
#include "tools/common/Wrap.h"
#include "tools/mlktree/matrix/Matrix.h"
#include "tools/mlktree/matrix/MatrixFormats.h"
#include "tools/mlktree/set/SetCountry.h"
#include "tools/mlktree/set/SetModel.h"
#include "tools/mlktree/tests/Harness.h"

namespace mlk::tree {

namespace {

using nlohmann::json;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

TEST(MatrixRowTest, PatternsAreOfNames) {
    const MatrixRow item{RowKind::ITEM, "[PANEL]", "m_pPanelName"};
    for (const char* pattern : {"[PANEL] m_pPanelName", "[PANEL]*", "*Name", "[PAN??] *", "PANEL",
                                "[PANEL]", "m_pPanelName", "*"}) {
        EXPECT_TRUE(isChosen(item, pattern)) << pattern;
    }
    for (const char* pattern : {"PAN", "[PAN]*", "panel", "m_pPanel", "", "item *"}) {
        EXPECT_FALSE(isChosen(item, pattern)) << pattern;
    }
    const MatrixRow feature{RowKind::FEATURE, "", "pvrEnabled"};
    EXPECT_TRUE(isChosen(feature, "feature *"));
    EXPECT_TRUE(isChosen(feature, "pvrEnabled"));
    EXPECT_FALSE(isChosen(feature, "framework *"));
    EXPECT_TRUE(isChosen(feature, "feature"));
    EXPECT_FALSE(isChosen(feature, "plan"));
    EXPECT_FALSE(isChosen(item, "item"));
    EXPECT_TRUE(isChosen({RowKind::PLAN, "", "DTV_CABLE AUTO"}, "plan"));
    EXPECT_TRUE(isChosen({RowKind::FRAMEWORK, "", "strEnabled"}, "framework"));
    EXPECT_FALSE(isChosen(feature, ""));
}

TEST(MatrixFormatsTest, LettersGoOn) {
    EXPECT_EQ(lettersOf(0), "A");
    EXPECT_EQ(lettersOf(25), "Z");
    EXPECT_EQ(lettersOf(26), "AA");
    EXPECT_EQ(lettersOf(27), "AB");
    EXPECT_EQ(lettersOf(26 + 26 * 26), "AAA");
}

class MatrixTest : public ::testing::Test {
  protected:
    MatrixTest() {
        std::filesystem::copy(testing::sourceDir() + "/samples/partitions", mDir.path(),
                              std::filesystem::copy_options::recursive);
    }

    Outcome run(std::vector<std::string> words) const {
        words.insert(words.begin(), "matrix");
        return runMlktree(words, mDir.path());
    }
    std::string shown(const std::vector<std::string>& words) const {
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return outcome.out;
    }
    json parsed(std::vector<std::string> words) const {
        words.insert(words.end(), {"--format", "json"});
        return json::parse(shown(words));
    }

    testing::QuietLog mQuiet;
    testing::TempDir mDir;
};

bool hasMember(const json& term, const char* kind, const json& member) {
    const auto list = term.find(kind);
    return list == term.end() || std::find(list->begin(), list->end(), member) != list->end();
}

// The value of a set in a row; each set must stand in one group.
json valueIn(const json& row, const json& model, const json& board, const json& country) {
    std::vector<json> found;
    for (const json& value : row["values"]) {
        for (const json& term : value["sets"]) {
            if (hasMember(term, "models", model) && hasMember(term, "boards", board) &&
                hasMember(term, "countries", country)) {
                found.push_back(value["value"]);
            }
        }
    }
    EXPECT_THAT(found, SizeIs(1)) << row << model << board << country;
    return found.empty() ? json() : found.front();
}

// The sets of the sample, each asked by itself.
TEST_F(MatrixTest, HasWhatEachSetHas) {
    const json matrix = parsed({"--all"});
    const Tree tree(mDir.path(), {});
    const Settings settings;
    const TreeProperties properties(mDir.path("data/property"), {});
    const ProductLine line(tree, settings, properties, {});
    EXPECT_EQ(matrix["sets"], line.setCount());
    size_t number = 0;
    size_t compared = 0;
    for (const Model& model : line.models()) {
        for (const Board& board : line.boards()) {
            for (const _tv_country country : line.countries()) {
                if (number++ % 61 != 0) {
                    continue;
                }
                const SetModel set(line, {model.customer, &model, &board, country});
                const std::vector<CountryPlan> plans = plansOf(set, country);
                for (const json& row : matrix["rows"]) {
                    const json value = valueIn(row, model.index, board.name, countryName(country));
                    const std::string key = row["key"];
                    if (row["kind"] == "item") {
                        const SetItem* const item = set.find(std::string(row["section"]), key);
                        EXPECT_EQ(value, item == nullptr ? json()
                                                         : json(std::string(item->current().value)))
                                << row;
                        ++compared;
                    } else if (row["kind"] == "plan") {
                        json expected;
                        for (const CountryPlan& plan : plans) {
                            if (nameOf(plan) == key) {
                                expected = plan.file.substr(plan.file.rfind('/') + 1) + " (" +
                                           std::to_string(plan.channels.size()) + ")";
                            }
                        }
                        EXPECT_EQ(value, expected) << nameOf(set.choice()) << key;
                        ++compared;
                    }
                }
            }
        }
    }
    EXPECT_GT(compared, 5000U);
}

TEST_F(MatrixTest, FeaturesAreThoseOfTheSet) {
    const json matrix = parsed({"feature *", "framework *", "--all"});
    const auto valueOf = [&](const char* key, int model, const char* country) {
        for (const json& row : matrix["rows"]) {
            if (row["key"] == key) {
                return valueIn(row, model, "skerry_b1.ini", country);
            }
        }
        return json("no row");
    };
    EXPECT_EQ(valueOf("mheg5Enabled", 2, "GERMANY"), "false");
    EXPECT_EQ(valueOf("mheg5Enabled", 2, "UNITED_KINGDOM"), "true");
    EXPECT_EQ(valueOf("getDtvSystem", 4, "GERMANY"), "2");
    EXPECT_GT(matrix["rows"].size(), 40U);
}

TEST_F(MatrixTest, ShowsWhatDiffersUnlessAllIsAsked) {
    const auto keys = [&](const std::vector<std::string>& words) {
        std::vector<std::string> all;
        const json matrix = parsed(words);
        for (const json& row : matrix["rows"]) {
            all.push_back(row["key"]);
        }
        return all;
    };
    EXPECT_THAT(keys({"SSC", "--board", "skerry_b1.ini"}), ElementsAre("SSC_PANEL_PERMILLE"));
    EXPECT_THAT(keys({"SSC", "--board", "skerry_b1.ini", "--all"}),
                AllOf(Contains("m_pSSCName"), Contains("SSC_PANEL_PERMILLE")));
    EXPECT_THAT(keys({"SSC", "m_pPanelName"}),
                ElementsAre("m_pPanelName", "SSC_PANEL_PERMILLE", "m_pSSCName"));
}

TEST_F(MatrixTest, GroupsSetsThatAreTheSame) {
    EXPECT_EQ(shown({"[SSC] *"}),
              "A  model 1 with board skerry_b1.ini\n"
              "B  board skerry_b2.ini\n"
              "C  models 2 to 7 with board skerry_b1.ini\n"
              "\n"
              "                          A                          B\n"
              "[SSC] SSC_PANEL_PERMILLE  10                         20\n"
              "[SSC] m_pSSCName          /tvconfigs/ssc/ssc_b1.ini  /tvconfigs/ssc/ssc_b2.ini\n"
              "\n"
              "                          C\n"
              "[SSC] SSC_PANEL_PERMILLE  15\n"
              "[SSC] m_pSSCName          /tvconfigs/ssc/ssc_b1.ini\n");
}

TEST_F(MatrixTest, AShortNameHeadsItsColumn) {
    EXPECT_EQ(shown({"AQ_SURROUND"}),
              "                  models 1 to 4  models 5 to 7\n"
              "[AQ] AQ_SURROUND  0              1\n");
}

TEST_F(MatrixTest, NamesGroupsShortly) {
    // Three indexes are a run, two are not.
    EXPECT_THAT(shown({"BL_DUTY_MIN", "--layout", "list"}),
                AllOf(HasSubstr("models 3, 4\n"), HasSubstr("models 5 to 7\n")));
    // Of many countries those are named that are left out.
    EXPECT_THAT(shown({"dtvCableEnabled", "--model", "2", "--layout", "list"}),
                "feature dtvCableEnabled\n"
                "  true   all but IRELAND, UNITED_KINGDOM\n"
                "  false  IRELAND, UNITED_KINGDOM\n");
}

TEST_F(MatrixTest, WrapsColumnsIntoBlocksOfTheWidth) {
    for (const char* width : {"20", "40", "60", "100", "300"}) {
        const std::string text = shown({"PANEL", "--width", width, "--layout", "table"});
        size_t heads = 0;
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            // A narrow terminal still gets the name and a column.
            EXPECT_LE(columnsOf(line), std::max<size_t>(std::stoul(width), 32)) << line;
            heads += line.find("model ") != std::string::npos ? 1 : 0;
        }
        EXPECT_EQ(heads > 1, std::stoi(width) < 300) << width;
        for (const char* model : {"model 1", "model 7"}) {
            EXPECT_THAT(text, HasSubstr(model));
        }
    }
}

TEST_F(MatrixTest, NamesOfFilesStayWholeWhereTheyFit) {
    const std::string path = "/tvconfigs/some_long_folder/another_long_folder/panel_60.bin";
    mDir.write("tvconfigs/board/skerry_b1.ini", "[SSC]\nm_pSSCName = " + path + "\n");
    const std::vector<std::string> words = {"m_pSSCName", "--model", "1", "--layout", "table"};
    const auto shownWith = [&](const char* width) {
        std::vector<std::string> all = words;
        all.insert(all.end(), {"--width", width});
        return shown(all);
    };
    EXPECT_THAT(shownWith("200"), HasSubstr("  " + path + "  /tvconfigs/"));
    // A narrow terminal gets pieces that end after a folder.
    EXPECT_THAT(shownWith("100"), AllOf(HasSubstr("  /tvconfigs/some_long_folder/ "),
                                        HasSubstr("  another_long_folder/panel_60.bin\n")));
    EXPECT_THAT(shownWith("40"), HasSubstr("  another_long_"));
}

TEST_F(MatrixTest, ManyColumnsBecomeALists) {
    const std::string text = shown({"plan DTV_ANTENNA", "getAtvSystem"});
    EXPECT_THAT(text, StartsWith("feature getAtvSystem\n"
                                 "  0  "));
    EXPECT_THAT(text, HasSubstr("plan DTV_ANTENNA\n"));
    EXPECT_THAT(text, HasSubstr("  freqtable_dvbt_australia (32)  AUSTRALIA\n"));
    EXPECT_THAT(shown({"AQ_SURROUND", "--layout", "list"}),
                "[AQ] AQ_SURROUND\n  0  models 1 to 4\n  1  models 5 to 7\n");
}

TEST_F(MatrixTest, AMissingItemIsNoEmptyOne) {
    mDir.write("tvconfigs/model/T1.ini", "[A]\nk = 1\n");
    mDir.write("tvconfigs/model/T2.ini", "[A]\nk =\n[B]\nb = x|y <z>,\n");
    mDir.write("tvconfigs/model/T3.ini", "[C]\n");
    mDir.write("tvconfigs/system/tarnquill_skerry.ini",
               "Model_1 = \"/tvconfigs/model/T1.ini\"\nModel_2 = \"/tvconfigs/model/T2.ini\"\n"
               "Model_3 = \"/tvconfigs/model/T3.ini\"\n");
    const auto as = [&](const char* format) {
        return shown({"A", "B", "--board", "none", "--format", format});
    };
    EXPECT_EQ(as("text"),
              "       model 1  model 2   model 3\n"
              "[A] k  1        \"\"        -\n"
              "[B] b  -        x|y <z>,  -\n");
    EXPECT_EQ(as("csv"),
              "kind,section,key,model 1,model 2,model 3\r\n"
              "item,[A],k,1,\"\",\r\n"
              "item,[B],b,,\"x|y <z>,\",\r\n");
    EXPECT_EQ(as("markdown"),
              "| | model 1 | model 2 | model 3 |\n"
              "|---|---|---|---|\n"
              "| \\[A\\] k | 1 | \"\" | |\n"
              "| \\[B\\] b | | x\\|y &lt;z&gt;, | |\n");
    const json object = json::parse(as("json"));
    EXPECT_EQ(object["rows"][0]["values"][1],
              json::parse(R"({"value":"","sets":[{"models":[2]}]})"));
    EXPECT_EQ(object["rows"][0]["values"][2],
              json::parse(R"({"value":null,"sets":[{"models":[3]}]})"));
}

TEST_F(MatrixTest, QuotesAreDoubledInCsv) {
    const std::string file = "tvconfigs/tvsysmap/tvsys_apac.xml";
    std::string text = mDir.read(file);
    const std::string value = R"(key="ParentalRating" value="australia")";
    text.replace(text.find(value), value.size(), R"(key="ParentalRating" value="a&quot;b")");
    mDir.write(file, text);
    EXPECT_THAT(shown({"ParentalRating", "--model", "7", "--format", "csv"}),
                HasSubstr(R"(,"a""b")"));
}

TEST_F(MatrixTest, ValuesAreNoCommandsToATerminal) {
    const std::string file = "tvconfigs/model/TRQ32_S1_EU.ini";
    mDir.write(file, mDir.read(file) + "\n[ODD]\nk = \x1b[2J\xff\n");
    for (const char* format : {"text", "markdown"}) {
        EXPECT_THAT(shown({"ODD", "--format", format}),
                    AllOf(Not(HasSubstr("\x1b")), HasSubstr("udcff")));
    }
    EXPECT_THAT(shown({"ODD", "--format", "json"}), HasSubstr("\"\\u001b[2J\\udcff\""));
}

TEST_F(MatrixTest, SaysWhenNothingDiffersOrFits) {
    const Outcome same = run({"SSC", "--model", "2", "--board", "skerry_b1.ini"});
    EXPECT_EQ(same.status, 0);
    EXPECT_EQ(same.out, "");
    EXPECT_THAT(same.err, AllOf(HasSubstr("nothing differs: "),
                                HasSubstr(" rows are the same in all sets; --all shows them")));
    const Outcome misspelt = run({"PANLE"});
    EXPECT_EQ(misspelt.status, 1);
    EXPECT_EQ(misspelt.err,
              "mlktree: no item, feature or plan fits \"PANLE\"; did you mean PANEL?\n");
    EXPECT_EQ(run({"--width", "19"}).status, 2);
    EXPECT_EQ(run({"--width", "8x"}).status, 2);
    EXPECT_EQ(run({"--layout", "tabel"}).status, 2);
    EXPECT_EQ(run({"--model", "99"}).status, 2);
}

TEST_F(MatrixTest, TakesATreeInFront) {
    const std::string text = shown({"PANEL"});
    const std::string other = "/nowhere/at/all";
    EXPECT_EQ(runMlktree({"matrix", mDir.path(), "PANEL"}, other).out, text);
    EXPECT_EQ(runMlktree({"matrix", "PANEL", "--tree", mDir.path()}, other).out, text);
    EXPECT_EQ(runMlktree({"matrix", mDir.path(), "[PANEL]*"}, other).out, text);
    EXPECT_EQ(runMlktree({"matrix", "PANEL", "-o", mDir.path("m.txt")}, mDir.path()).out, "");
    EXPECT_EQ(mDir.read("m.txt"), text);
    // A word that was meant as the tree.
    const Outcome wrong = runMlktree({"matrix", "partitoins"}, mDir.path("tvdata"));
    EXPECT_EQ(wrong.status, 2);
    EXPECT_THAT(wrong.err, AllOf(HasSubstr("no partition tree: there is no folder "),
                                 HasSubstr("; \"partitoins\" is no such folder and counts as a "
                                           "PATTERN\n")));
    EXPECT_THAT(runMlktree({"matrix", "PANEL", "--tree", mDir.path("tvdata")}).err,
                Not(HasSubstr("PATTERN")));
    // The tree in the wrong place, from a tree and from another folder.
    const std::string hint = "; if \"" + mDir.path() + "\" is the tree, it comes first\n";
    const std::vector<std::string> words = {"matrix", "PANEL", mDir.path()};
    EXPECT_EQ(runMlktree(words, mDir.path()).err,
              "mlktree: no item, feature or plan fits \"" + mDir.path() + "\"" + hint);
    EXPECT_THAT(runMlktree(words, other).err,
                AllOf(HasSubstr("no partition tree: "), EndsWith(hint)));
    EXPECT_THAT(runMlktree({"matrix", "PANEL", "x/y", "--tree", mDir.path()}).err,
                EndsWith(" fits \"x/y\"\n"));
}

// Customers and a set without country or model.
TEST_F(MatrixTest, NamesOddSets) {
    std::filesystem::copy(mDir.path("tvconfigs/customer.ini"), mDir.path("tvconfigs/second.ini"));
    const json two = parsed({"m_pPanelName", "--customer", "tvconfigs/customer.ini", "--customer",
                             "tvconfigs/second.ini"});
    EXPECT_EQ(two["rows"][0]["values"][0]["sets"][0]["customers"],
              json::parse(R"(["tvconfigs/customer.ini","tvconfigs/second.ini"])"));
    EXPECT_THAT(shown({"m_pPanelName", "--customer", "tvconfigs/customer.ini", "--customer",
                       "tvconfigs/second.ini", "--layout", "list"}),
                HasSubstr("models 1 of tvconfigs/customer.ini, 1 of tvconfigs/second.ini\n"));
    mDir.write("tvconfigs/system/tarnquill_skerry.ini", "# none\n");
    const Outcome none = run({});
    EXPECT_EQ(none.status, 0);
    EXPECT_THAT(none.err, HasSubstr("there are no sets"));
}

}  // namespace

}  // namespace mlk::tree
