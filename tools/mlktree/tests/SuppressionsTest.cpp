// Comments and tables that allow findings.

#include "tools/mlktree/Suppressions.h"

#include <gmock/gmock.h>

#include "tools/mlktree/tests/Harness.h"

namespace mlk::tree {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using vendor::morlak::mlkconfigs::V1_0::implementation::LineUse;
using vendor::morlak::mlkconfigs::V1_0::implementation::ReadLine;

// Lines of a file: what begins with "#" or "//", and empty ones, are comments to the reader.
std::vector<ReadLine> lines(const std::vector<std::string_view>& texts) {
    std::vector<ReadLine> read;
    for (const std::string_view text : texts) {
        ReadLine line;
        line.number = read.size() + 1;
        line.text = text;
        const bool isNothing = text.empty() || text.front() == '#' || text.front() == '/';
        line.use = isNothing ? LineUse::NOTHING : LineUse::ITEM;
        read.push_back(line);
    }
    return read;
}

std::vector<std::string> rulesOf(const std::vector<Finding>& findings) {
    std::vector<std::string> rules;
    for (const Finding& one : findings) {
        rules.push_back(one.rule);
    }
    return rules;
}

Finding at(size_t line, const std::string& rule = "tab") {
    return finding(rule, Severity::ERROR, {"a.ini", line, 1}, "wrong");
}

TEST(AllowCommentsTest, SpeakOfTheNextLine) {
    const auto found = allowComments(
            "a.ini", lines({"x = 1", "# mlktree: allow tab it must", "# a remark", "", "y = 2"}));
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].rule, "tab");
    EXPECT_EQ(found[0].reason, "it must");
    EXPECT_EQ(found[0].place.line, 2U);
    EXPECT_EQ(found[0].place.column, 1U);
    EXPECT_EQ(found[0].target, 5U);
    EXPECT_FALSE(found[0].isAtBeginning);
}

TEST(AllowCommentsTest, MayStandInARow) {
    const auto found = allowComments("a", lines({"##  mlktree:allow tab  one reason ",
                                                 "// mlktree: allow nul-byte other", "x"}));
    ASSERT_THAT(found, SizeIs(2));
    EXPECT_EQ(found[0].reason, "one reason");
    EXPECT_EQ(found[0].target, 3U);
    EXPECT_EQ(found[1].rule, "nul-byte");
    EXPECT_EQ(found[1].target, 3U);
    EXPECT_TRUE(found[0].isAtBeginning);
    EXPECT_TRUE(found[1].isAtBeginning);
}

TEST(AllowCommentsTest, AreLinesThatTheReaderDoesNotUse) {
    std::vector<ReadLine> read = lines({"# mlktree: allow tab a Model_7 = counts", "x"});
    read[0].use = LineUse::ITEM;
    EXPECT_THAT(allowComments("a", read), IsEmpty());
    EXPECT_THAT(allowComments("a", lines({"x # mlktree: allow tab no comment", "# mlktree", "#",
                                          "# see mlktree: allow"})),
                IsEmpty());
}

TEST(AllowCommentsTest, MayComeLast) {
    const auto found = allowComments("a", lines({"x", "# mlktree: allow tab r"}));
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].target, 0U);
}

TEST(AllowCommentsTest, StandInXml) {
    const auto found = allowCommentsOfXml(
            "a.xml", {"<?xml version=\"1.0\"?>", "<!-- mlktree: allow tab whole file -->", "<a>",
                      "  <!-- mlktree: allow tab two", "       lines -->",
                      "<!-- mlktree: allow nul-byte same line --><b/>", "<c/> <!-- else -->",
                      "<d/> <!-- mlktree: allow tab below -->", "<e/>", "<!-- mlktree: allow x"});
    ASSERT_THAT(found, SizeIs(4));
    EXPECT_EQ(found[0].target, 3U);
    EXPECT_TRUE(found[0].isAtBeginning);
    EXPECT_EQ(found[1].reason, "two        lines");
    EXPECT_EQ(found[1].place.line, 4U);
    EXPECT_EQ(found[1].place.column, 3U);
    EXPECT_EQ(found[1].target, 6U);
    EXPECT_FALSE(found[1].isAtBeginning);
    EXPECT_EQ(found[2].target, 6U);
    EXPECT_EQ(found[3].target, 9U);
}

TEST(ApplyCommentsTest, TakesOutWhatIsAllowed) {
    Sorted sorted{{at(2), at(2, "nul-byte"), at(3)}, {}};
    applyComments(sorted, allowComments("a.ini", lines({"# mlktree: allow tab it must", "x", "y"})),
                  true);
    EXPECT_THAT(rulesOf(sorted.findings), ElementsAre("nul-byte", "tab"));
    ASSERT_THAT(sorted.allowed, SizeIs(1));
    EXPECT_EQ(sorted.allowed[0].finding.place.line, 2U);
    EXPECT_EQ(sorted.allowed[0].by, AllowedBy::COMMENT);
    EXPECT_EQ(sorted.allowed[0].reason, "it must");
}

TEST(ApplyCommentsTest, SpeaksOfTheWholeFileAtItsBeginning) {
    Sorted sorted{{at(0)}, {}};
    applyComments(sorted, allowComments("a.ini", lines({"# mlktree: allow tab r", "x"})), true);
    EXPECT_THAT(sorted.findings, IsEmpty());
    Sorted later{{at(0)}, {}};
    applyComments(later, allowComments("a.ini", lines({"x", "# mlktree: allow tab r", "y"})), true);
    EXPECT_THAT(rulesOf(later.findings), ElementsAre("tab", "unused-allow"));
}

TEST(ApplyCommentsTest, TellsFilesApart) {
    Sorted sorted{{at(2)}, {}};
    applyComments(sorted, allowComments("b.ini", lines({"# mlktree: allow tab r", "x"})), false);
    EXPECT_THAT(sorted.findings, SizeIs(1));
}

TEST(ApplyCommentsTest, ReportsWhatIsWrongWithComments) {
    struct Row {
        const char* comment;
        const char* rule;
        const char* message;
    };
    for (const Row& row : {
                 Row{"# mlktree: allow tab", "allow-without-reason", "say why tab is right here"},
                 Row{"# mlktree: allow tba r", "unknown-rule",
                     "there is no rule \"tba\"; did you mean tab?"},
                 Row{"# mlktree: allow", "unknown-rule", "no rule is named"},
                 Row{"# mlktree: alow tab r", "unknown-rule", "does not know the word \"alow\""},
                 Row{"# mlktree:", "unknown-rule", "says nothing"},
                 Row{"# mlktree: allow nul-byte r", "unused-allow",
                     "the line below gives no finding of the rule nul-byte"},
         }) {
        Sorted sorted{{at(3)}, {}};
        applyComments(sorted, allowComments("a.ini", lines({"z", row.comment, "x"})), true);
        ASSERT_THAT(sorted.findings, SizeIs(2)) << row.comment;
        EXPECT_EQ(sorted.findings[0].rule, row.rule);
        EXPECT_THAT(sorted.findings[0].message, HasSubstr(row.message));
        EXPECT_EQ(sorted.findings[0].place.line, 2U);
        EXPECT_EQ(sorted.findings[1].rule, "tab") << "a wrong comment allows nothing";
    }
}

TEST(ApplyCommentsTest, ReportsNoUnusedCommentIfSetsAreLeftOut) {
    Sorted sorted;
    applyComments(sorted, allowComments("a.ini", lines({"# mlktree: allow tab r", "x"})), false);
    EXPECT_THAT(sorted.findings, IsEmpty());
}

Settings settingsWith(std::vector<RuleSetting> rules, std::vector<Allowance> allowances = {}) {
    Settings settings;
    settings.rules = std::move(rules);
    settings.allowances = std::move(allowances);
    return settings;
}

TEST(ApplySettingsTest, TheLastRowThatFitsCounts) {
    const LineOf none = linesOf({});
    Sorted sorted{{at(1), at(2, "nul-byte")}, {}};
    applySettings(sorted,
                  settingsWith({{"*", "**", Severity::WARNING, "", 1},
                                {"tab", "tvdata/**", Severity::ERROR, "", 2},
                                {"tab", "*.ini", Severity::NOTE, "", 3}}),
                  "mlktree.toml", none, true);
    ASSERT_THAT(sorted.findings, SizeIs(2));
    EXPECT_EQ(sorted.findings[0].severity, Severity::NOTE);
    EXPECT_EQ(sorted.findings[1].severity, Severity::WARNING);
}

TEST(ApplySettingsTest, OffIsAllowedWithItsReason) {
    Sorted sorted{{at(1)}, {}};
    applySettings(sorted, settingsWith({{"tab", "**", Severity::OFF, "we like tabs", 1}}),
                  "mlktree.toml", linesOf({}), true);
    EXPECT_THAT(sorted.findings, IsEmpty());
    ASSERT_THAT(sorted.allowed, SizeIs(1));
    EXPECT_EQ(sorted.allowed[0].by, AllowedBy::SETTINGS);
    EXPECT_EQ(sorted.allowed[0].reason, "we like tabs");
}

TEST(ApplySettingsTest, AllowancesFitTheTextOfTheLine) {
    const LineOf source = linesOf({{"a.ini", "GERMANY\nATLANTIS \n"}});
    Sorted sorted{{at(1), at(2)}, {}};
    applySettings(sorted, settingsWith({}, {{"tab", "*.ini", "ATLANTIS", "new", 7}}),
                  "mlktree.toml", source, true);
    ASSERT_THAT(sorted.findings, SizeIs(1));
    EXPECT_EQ(sorted.findings[0].place.line, 1U);
    ASSERT_THAT(sorted.allowed, SizeIs(1));
    EXPECT_EQ(sorted.allowed[0].reason, "new");
}

TEST(ApplySettingsTest, ReportsUnusedAllowances) {
    const Settings settings = settingsWith({}, {{"tab", "b.ini", "", "new", 7}});
    Sorted sorted;
    applySettings(sorted, settings, "mlktree.toml", linesOf({}), true);
    ASSERT_THAT(rulesOf(sorted.findings), ElementsAre("unused-allow"));
    EXPECT_EQ(sorted.findings[0].place.file, "mlktree.toml");
    EXPECT_EQ(sorted.findings[0].place.line, 7U);
    Sorted some;
    applySettings(some, settings, "mlktree.toml", linesOf({}), false);
    EXPECT_THAT(some.findings, IsEmpty());
}

}  // namespace

}  // namespace mlk::tree
