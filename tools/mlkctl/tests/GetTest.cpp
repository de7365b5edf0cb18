// `mlkctl get`.

#include <gmock/gmock.h>

#include "tools/mlkctl/Dump.h"
#include "tools/mlkctl/tests/Harness.h"

namespace mlk::ctl {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Words = std::vector<std::string>;

constexpr const char* kDump = R"(ProjectConfigs:
  Customer ID: C
  Sys ini file: /set/tvconfigs/system.ini
  Project ini file: /set/tvconfigs/model.ini
  Board ini file: /set/tvconfigs/board.ini
    [LiveTV]:TvConfig=/tv.config
    [LiveTV]:Empty=
    [PANEL]:Name=a]:b=c
    no item
Audio configuration file: 
  IniProjectParser deatil:
    File:a.ini
        [SPEAKER]:AV_DELAY=2
    File:b.ini
        [SPEAKER]:AV_DELAY=3
)";

TEST(DumpedSetTest, HasFilesAndItems) {
    const DumpedSet set = parseDump(kDump);
    EXPECT_EQ(set.systemFile, "/set/tvconfigs/system.ini");
    EXPECT_EQ(set.projectFile, "/set/tvconfigs/model.ini");
    EXPECT_EQ(set.boardFile, "/set/tvconfigs/board.ini");
    ASSERT_EQ(set.items.size(), 3U);
    EXPECT_EQ(set.items[2].section, "[PANEL]");
    EXPECT_EQ(set.items[2].key, "Name");
    EXPECT_EQ(set.items[2].value, "a]:b=c");
    EXPECT_THAT(sectionsOf(set.items), ElementsAre("[LiveTV]", "[PANEL]"));
    EXPECT_THAT(keysOf(set.items, "[LiveTV]"), ElementsAre("TvConfig", "Empty"));
    EXPECT_THAT(keysOf(set.audioItems, "[SPEAKER]"), ElementsAre("AV_DELAY"));
    EXPECT_THAT(keysOf(set.items, "[SPEAKER]"), IsEmpty());
}

TEST(DumpedSetTest, TakesAnythingForADump) {
    for (const char* text : {"", "\n\n", "[", "[a]:", "[a]:b", "no newline", "    [a]:b=c"}) {
        EXPECT_LE(parseDump(text).items.size(), 1U);
    }
    EXPECT_EQ(parseDump("[a]:b=c").items.size(), 1U);
}

// A project with two sections, one of them without brackets as well.
class GetTest : public ::testing::Test {
  protected:
    GetTest() {
        mScript.items = {};
        mScript.emptyTexts = true;
        mScript.dump = kDump;
        mScript.itemsOf[{"getConfigsByCategory", "[LiveTV]"}] = {{"Empty", ""},
                                                                 {"TvConfig", "/tv.config"}};
        mScript.itemsOf[{"getConfigsByCategory", "[PANEL]"}] = {{"Name", "with brackets"}};
        mScript.itemsOf[{"getConfigsByCategory", "PANEL"}] = {{"Name", "without"}};
        mScript.textOf[{"getConfig", "[LiveTV]", "TvConfig"}] = "/tv.config";
        mScript.textOf[{"getConfig", "[PANEL]", "Name"}] = "with brackets";
        mScript.textOf[{"getConfig", "PANEL", "Name"}] = "without";
    }
    Outcome get(Words words) {
        words.insert(words.begin(), "get");
        return runMlkctl(words, mScript);
    }
    // What it prints; it must succeed without a message.
    std::string got(const Words& words) {
        const Outcome outcome = get(words);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.err, "");
        return outcome.out;
    }

    Script mScript;
};

TEST_F(GetTest, AnswersAsTheMethodDoes) {
    const std::string item = "{\"success\":true,\"value\":\"/tv.config\"}\n";
    const std::string section =
            R"([{"key":"Empty","value":""},{"key":"TvConfig","value":"/tv.config"}])"
            "\n";
    EXPECT_EQ(got({"[LiveTV]", "TvConfig"}), item);
    EXPECT_EQ(got({"LiveTV", "TvConfig"}), item);
    EXPECT_EQ(got({"[LiveTV]"}), section);
    EXPECT_EQ(got({"LiveTV"}), section);
}

TEST_F(GetTest, PlainIsTheBareValue) {
    EXPECT_EQ(got({"--plain", "LiveTV", "TvConfig"}), "/tv.config\n");
    EXPECT_EQ(got({"--plain", "LiveTV", "Empty"}), "\n");  // it exists
    EXPECT_EQ(got({"--plain", "LiveTV"}), "Empty=\nTvConfig=/tv.config\n");
}

TEST_F(GetTest, PlainMayBeTheLastWord) {
    EXPECT_EQ(got({"LiveTV", "TvConfig", "--plain"}), "/tv.config\n");
    EXPECT_EQ(got({"LiveTV", "--plain"}), "Empty=\nTvConfig=/tv.config\n");
    EXPECT_EQ(get({"--", "LiveTV", "--plain"}).err, "mlkctl: [LiveTV] has no key \"--plain\"\n");
    EXPECT_EQ(get({"--plain"}).status, 2);
    EXPECT_EQ(get({"a", "b", "c", "--plain"}).status, 2);
}

TEST_F(GetTest, ASectionWithoutBracketsComesFirst) {
    EXPECT_EQ(got({"--plain", "PANEL", "Name"}), "without\n");
    EXPECT_EQ(got({"--plain", "[PANEL]", "Name"}), "with brackets\n");
    EXPECT_EQ(got({"PANEL", "Name"}), "{\"success\":true,\"value\":\"without\"}\n");
}

TEST_F(GetTest, SaysWhatIsMissing) {
    const auto missing = [&](const Words& words, int status) {
        const Outcome outcome = get(words);
        EXPECT_EQ(outcome.status, status);
        return outcome.out + outcome.err;
    };
    EXPECT_EQ(missing({"--plain", "LivTV", "TvConfig"}, 1),
              "mlkctl: there is no section \"LivTV\"; did you mean [LiveTV]?\n");
    EXPECT_EQ(missing({"--plain", "LiveTV", "tvconfig"}, 1),
              "mlkctl: [LiveTV] has no key \"tvconfig\"; did you mean TvConfig?\n");
    EXPECT_EQ(missing({"--plain", "[LiveTV]", "Zebra"}, 1),
              "mlkctl: [LiveTV] has no key \"Zebra\"\n");
    EXPECT_EQ(missing({"--plain", "Zebra"}, 1), "mlkctl: there is no section \"Zebra\"\n");
    EXPECT_EQ(missing({"Zebra"}, 0), "[]\nmlkctl: there is no section \"Zebra\"\n");
    EXPECT_EQ(missing({"LiveTV", "Zebra"}, 0),
              "{\"success\":true,\"value\":\"\"}\nmlkctl: [LiveTV] has no key \"Zebra\"\n");
    // A service that tells nothing of its items.
    mScript.dying = {"debug"};
    EXPECT_EQ(missing({"--plain", "Zebra", "a"}, 1), "mlkctl: there is no item Zebra a\n");
}

TEST_F(GetTest, WantsASection) {
    EXPECT_EQ(get({}).status, 2);
    EXPECT_EQ(get({"a", "b", "c"}).err, "mlkctl: get takes SECTION and maybe KEY\n");
    EXPECT_EQ(get({"--plane", "a"}).status, 2);
    const Outcome outcome = runMlkctl({"get", "a"}, mScript, "", {"IMlkProjectConfigs"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr("not registered"));
}

}  // namespace

}  // namespace mlk::ctl
