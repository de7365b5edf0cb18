// What the page of `mlktree report` holds: its two JSON texts. tests/report_test.py looks at the
// page itself, in a browser.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "host/testing/TempDir.h"
#include "tools/mlktree/OpenTree.h"
#include "tools/mlktree/answers/LineAnswers.h"
#include "tools/mlktree/report/Packed.h"
#include "tools/mlktree/set/SetModel.h"
#include "tools/mlktree/show/SetFacts.h"
#include "tools/mlktree/tests/Harness.h"
#include "tools/mlktree/tests/ReadReport.h"

namespace mlk::tree {

namespace {

class ReportTest : public ::testing::Test {
  protected:
    ReportTest() { copySoundTree(mDir); }

    void append(const std::string& path, const std::string& text) const {
        mDir.write(path, mDir.read(path) + text);
    }

    const mlk::testing::TempDir mDir;
};

// The line of a tree, and what its sets answer.
struct Opened {
    explicit Opened(const std::string& root)
        : tree(root, {}),
          properties(root + "/data/property", {}),
          line(tree, settings, properties, {}),
          answers(answersOf(line)) {}

    const Tree tree;
    const Settings settings;
    const TreeProperties properties;
    const ProductLine line;
    const std::unique_ptr<const LineAnswers> answers;
};

}  // namespace

TEST(PackedTest, UnpacksToTheSameText) {
    std::string large;
    for (uint32_t i = 0; i < 200'000; ++i) {
        large += std::to_string(i * 2654435761U);  // hardly compresses
    }
    for (const std::string& text : {std::string(), std::string("{}"), large}) {
        EXPECT_EQ(unpacked(packed(text)), text);
        EXPECT_EQ(packed(text), packed(text));
    }
    EXPECT_LT(packed(std::string(100'000, 'x')).size(), 1000U);
}

TEST(PackedTest, NothingEndsTheScriptElement) {
    EXPECT_EQ(inScript(R"({"a":"</script><!--"})"), R"({"a":"\u003c/script>\u003c!--"})");
}

TEST_F(ReportTest, HasTheLinesOfEveryFileThatIsRead) {
    append("tvconfigs/model/first.ini", "[X]\nbytes = \xff\xfe end\n\ttab = \x01\n");
    const ReadReport report(mDir.path());
    const Opened opened(mDir.path());
    size_t lines = 0;
    for (const auto& [path, file] : opened.line.files()) {
        if (!file->exists()) {
            continue;
        }
        const json& numbers = report.file(path)["lines"];
        const auto& expected = opened.line.sources().lines(path);
        ASSERT_EQ(numbers.size(), expected.size()) << path;
        for (size_t i = 0; i < expected.size(); ++i, ++lines) {
            EXPECT_EQ(report.text(numbers[i]), expected[i]) << path;
        }
    }
    EXPECT_GT(lines, 100U);
}

TEST_F(ReportTest, CutsLongLinesAndLeavesOutHugeFiles) {
    append("tvconfigs/model/first.ini", "# " + std::string(5000, 'x') + "\n");
    append("tvconfigs/model/second.ini", std::string(size_t{2} << 20U, '#') + "\n");
    const ReadReport report(mDir.path());
    const json& lines = report.file("tvconfigs/model/first.ini")["lines"];
    EXPECT_EQ(report.text(lines.back()).size(), 2000U);
    EXPECT_FALSE(report.file("tvconfigs/model/second.ini").contains("lines"));
}

TEST_F(ReportTest, SetsHaveTheirItemsWithTheirPlaces) {
    const ReadReport report(mDir.path());
    const Opened opened(mDir.path());
    ASSERT_GT(opened.answers->sets.size(), 2U);
    ASSERT_EQ(ReadReport::column(report.data["answers"]["sets"]["model"]).size(),
              opened.answers->sets.size());
    for (size_t i = 0; i < opened.answers->sets.size(); ++i) {
        const AnswerPieces& pieces = opened.answers->pieces[opened.answers->sets[i].pieces];
        std::map<std::string, std::string> expected;
        for (const AnswerItem* const item : opened.answers->itemsOf(pieces)) {
            const AnswerName& name = opened.answers->names[item->name];
            const AnswerPlace place = opened.answers->placeOf(*item, opened.answers->sets[i]);
            expected[std::string(name.section) + " " + std::string(name.key)] =
                    std::string(item->value) + " " + std::string(opened.answers->pathOf(place)) +
                    ":" + std::to_string(place.line);
        }
        EXPECT_EQ(report.itemsOf(i), expected);
    }
}

TEST_F(ReportTest, TellsWhichLinesALaterOneReplaces) {
    append("tvconfigs/model/first.ini", "[TWICE]\nkey = one\nkey = two\nkey = three\n");
    const ReadReport report(mDir.path());
    const json& file = report.file("tvconfigs/model/first.ini");
    const size_t last = file["lines"].size();
    const json& lost = file["lost"];
    ASSERT_EQ(lost.size(), 6U);
    EXPECT_EQ(lost[0], last - 2);
    EXPECT_EQ(report.text(lost[1]), "one");
    EXPECT_EQ(lost[2], last);
    EXPECT_EQ(report.text(lost[4]), "two");
}

TEST_F(ReportTest, ValuesLeadToTheFilesThatTheyName) {
    mDir.write("tvconfigs/audio/AVR_0EC0DE_Orlan.ini", "[ARC]\nDTV_DELAY = 1\n");
    const ReadReport report(mDir.path());
    // The line that names it stands for the receivers' files of the folder, too.
    EXPECT_EQ(report.fileOf("/tvconfigs/audio/avr_default.ini"), "tvconfigs/audio/avr_default.ini");
    EXPECT_EQ(report.fileOf("/tvconfigs/audio/panel.ini"), "tvconfigs/audio/panel.ini");
    EXPECT_EQ(report.fileOf("/tvconfigs/tv/tv_eu.config"), "tvconfigs/tv/tv_eu.config");
    EXPECT_EQ(report.fileOf("freqtable_eu"), "") << "no item's value, but a name of the map";
    EXPECT_GT(report.file("tvconfigs/audio/AVR_0EC0DE_Orlan.ini")["named"].size(), 0U);
}

TEST_F(ReportTest, KnowsTheFilesThatNothingNamesAndThoseThatAreMissing) {
    mDir.write("tvconfigs/audio/old.ini", "[A]\n");
    append("tvconfigs/model/first.ini", "[OVERSCAN]\nOVERSCAN_PATH = /tvconfigs/none.bin\n");
    const ReadReport report(mDir.path());
    EXPECT_EQ(report.summary["unused"], json({"tvconfigs/audio/old.ini"}));
    EXPECT_EQ(report.summary["unusedCount"], 1);
    EXPECT_EQ(report.summary["missing"], 1);
    EXPECT_EQ(report.file("tvconfigs/audio/old.ini")["unused"], 1);
    EXPECT_EQ(report.file("tvconfigs/none.bin")["exists"], 0);
    const json& named = report.file("tvconfigs/none.bin")["named"];
    ASSERT_EQ(named.size(), 2U);
    EXPECT_EQ(report.pathOf(named[0]), "tvconfigs/model/first.ini");
    int64_t files = 0;
    for (const json& kind : report.summary["kinds"]) {
        files += kind["count"].get<int64_t>();
    }
    int64_t existing = 0;
    for (const json& file : report.data["files"]) {
        existing += file["exists"].get<int64_t>();
    }
    EXPECT_EQ(files, existing);
}

TEST_F(ReportTest, HasTheFindingsOfTheCheckAndThoseThatAreAllowed) {
    append("tvconfigs/model/first.ini", "[OVERSCAN]\nOVERSCAN_PATH = /tvconfigs/none.bin\n");
    const ReadReport report(mDir.path());
    const json check = json::parse(runMlktree({"check", "--format", "json", mDir.path()}).out);
    std::set<std::string> expected;
    for (const json& finding : check["findings"]) {
        expected.insert(finding["file"].get<std::string>() + finding["message"].get<std::string>());
    }
    std::set<std::string> found;
    size_t allowed = 0;
    for (const json& finding : report.data["findings"]) {
        if (finding.contains("allowedBy")) {
            ++allowed;
            EXPECT_EQ(report.text(finding["allowedBy"]), "a comment");
            EXPECT_EQ(report.text(finding["reason"]), "the base has one of each kind");
        } else {
            found.insert(report.pathOf(finding["file"]) + report.text(finding["message"]));
        }
    }
    EXPECT_EQ(found, expected);
    EXPECT_EQ(report.summary["severities"]["allowed"], allowed);
    EXPECT_EQ(allowed, 1U);
    EXPECT_EQ(report.summary["severities"]["error"], 1);
}

TEST_F(ReportTest, BeginsWithTheSetOfTheTree) {
    const std::string saved = "tvdata/tvsysmap/country_id.bin";
    mDir.write("impdata/project_id.bin", "PROJECT_ID=2\n");
    const auto last = static_cast<int32_t>(Opened(mDir.path()).line.countries().back());
    mDir.write(saved, "COUNTRY_ID=" + std::to_string(last) + "\n");
    const ReadReport first(mDir.path());
    EXPECT_EQ(first.data["own"]["model"], 2);
    EXPECT_EQ(first.pathOf(first.data["own"]["board"]), "tvconfigs/board/b1.ini");
    EXPECT_EQ(first.data["own"]["country"], last);
    // Without a saved country, it is the first of the map.
    std::filesystem::remove(mDir.path(saved));
    const ReadReport second(mDir.path());
    const Opened opened(mDir.path());
    EXPECT_EQ(second.data["own"]["country"],
              static_cast<int32_t>(opened.line.tvSystems().front().systems->firstCountry()));
}

TEST_F(ReportTest, KnowsSystemAndRecordOfEachCountry) {
    const ReadReport report(mDir.path());
    const Opened opened(mDir.path());
    const json& system = report.data["systems"][0];
    EXPECT_EQ(report.pathOf(system["file"]), "tvconfigs/tvsysmap/systems.xml");
    EXPECT_EQ(report.pathOf(system["map"]), "tvconfigs/tvsysmap/countries.xml");
    const std::string line(opened.line.sources().line("tvconfigs/tvsysmap/systems.xml",
                                                      system["mapLine"].get<size_t>()));
    EXPECT_NE(line.find("countries.xml"), std::string::npos);
    ASSERT_EQ(system["countries"].size(), opened.line.countries().size());
    for (size_t i = 0; i < opened.line.countries().size(); ++i) {
        const _tv_country country = opened.line.countries()[i];
        EXPECT_EQ(report.text(system["countries"][i][0]),
                  opened.line.tvSystems()[0].systems->systemOf(country));
        EXPECT_GT(system["countries"][i][1], 0);
        EXPECT_EQ(report.data["countryNumbers"][i], static_cast<int32_t>(country));
    }
}

TEST_F(ReportTest, HasARowForEachFact) {
    const ReadReport report(mDir.path());
    const Opened opened(mDir.path());
    SetChoice choice;
    choice.customer = &opened.line.customers().front();
    choice.model = &opened.line.models().front();
    choice.board = &opened.line.boards().front();
    const std::vector<Fact> facts = factsOf(SetModel(opened.line, choice));
    ASSERT_EQ(report.data["facts"].size(), facts.size());
    for (size_t i = 0; i < facts.size(); ++i) {
        EXPECT_EQ(report.data["facts"][i]["label"], facts[i].name.label);
    }
}

TEST_F(ReportTest, NoByteOfATreeEndsAScript) {
    mDir.write("tvconfigs/audio/</script><script>", "x");
    append("tvconfigs/model/first.ini", "[</script>]\n<!-- = </script>\n");
    const ReadReport report(mDir.path());
    EXPECT_EQ(report.summaryText.find('<'), std::string::npos);
    const std::string data = between(report.page, "id=\"data\">", "</script>");
    EXPECT_EQ(data.find_first_not_of(
                      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/="),
              std::string::npos);
    // The summary, the script, and the data: no element more.
    size_t count = 0;
    for (size_t at = 0; (at = report.page.find("<script", at)) != std::string::npos; ++at) {
        ++count;
    }
    EXPECT_EQ(count, 3U);
}

TEST_F(ReportTest, AnEmptyTreeHasAPage) {
    const mlk::testing::TempDir empty;
    empty.mkdir("tvconfigs");
    const ReadReport report(empty.path());
    EXPECT_EQ(report.summary["models"], 0);
    EXPECT_EQ(report.data["answers"]["models"].size(), 0U);
}

TEST_F(ReportTest, RefusesWhatItCannotWrite) {
    EXPECT_EQ(runMlktree({"report", mDir.path()}).status, 2);
    const Outcome outcome = runMlktree({"report", mDir.path(), "-o", mDir.path() + "/no/such/x"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.err.find("/no/such/x"), std::string::npos);
}

}  // namespace mlk::tree
