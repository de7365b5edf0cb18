// The formats on hand-made findings.

#include "tools/mlktree/Formats.h"

#include <gmock/gmock.h>
#include <tinyxml2.h>

#include <nlohmann/json.hpp>

#include "tools/mlktree/tests/Harness.h"

namespace mlk::tree {

namespace {

using Json = nlohmann::json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;

constexpr Rule kRules[] = {
        {"first", Severity::ERROR, "a <first> rule", "It matters & more.", "bad", "good", nullptr},
        {"second", Severity::NOTE, "a second rule", "It matters.", "bad", "good", nullptr},
};

const std::vector<RuleFamily>& families() {
    static const std::vector<RuleFamily> kFamilies = {{"family", "A family", kRules, 2}};
    return kFamilies;
}

class FormatsTest : public ::testing::Test {
  protected:
    FormatsTest() {
        mReport.tree = "line";
        mReport.sets = 1240;
        mReport.files = 57;
    }

    void add(const std::string& rule, Severity severity, const Place& place,
             const std::string& message) {
        mReport.findings.push_back(finding(rule, severity, place, message));
    }

    std::string print(Format format) const { return printed(format, mReport, mContext); }

    CheckReport mReport;
    FormatContext mContext{linesOf({{"a.ini", "[A]\n\tkey = \"x\"\n\xc3\xa4 = \xff"}}),
                           families(),
                           Severity::WARNING,
                           false,
                           "file:///line/",
                           [](const std::string& path) { return "here/" + path; }};
};

TEST_F(FormatsTest, TextNamesPlaceSourceAndSummary) {
    add("first", Severity::ERROR, {"a.ini", 2, 2}, "the key is wrong");
    mReport.findings.back().sets = {"model=2", "model=3,board=b1.ini"};
    mReport.findings.back().related = {{{"b.ini", 7, 1}, "this line replaces it"}};
    add("second", Severity::NOTE, {"b.ini", 0, 0}, "nothing names this file");
    mReport.findings.back().sets = {};
    EXPECT_EQ(print(formatText),
              "a.ini:2:2: error: the key is wrong [first]\n"
              "        key = \"x\"\n"
              "        ^\n"
              "b.ini:7:1: note: this line replaces it\n"
              "    in model=2; model=3,board=b1.ini\n"
              "b.ini: note: nothing names this file [second]\n"
              "    no set uses this file\n"
              "1 error, 1 note in 57 files, 1,240 sets\n");
}

TEST_F(FormatsTest, TextHasColoursIfAsked) {
    add("first", Severity::ERROR, {"a.ini", 2, 2}, "wrong");
    EXPECT_THAT(print(formatText), Not(HasSubstr("\033")));
    mContext.isColoured = true;
    EXPECT_THAT(print(formatText), HasSubstr("\033[1ma.ini:2:2:\033[0m \033[1;31merror:\033[0m"));
}

TEST_F(FormatsTest, TextHandsNoCommandToTheTerminal) {
    add("first", Severity::ERROR, {"a\033[2J\n.ini", 2, 2}, "wrong \033]0;x\a \xff");
    mReport.findings.back().sets = {"board=\033c.ini"};
    mReport.findings.back().related = {{{"\033b", 1, 0}, "\033c"}};
    add("first", Severity::ERROR, {"a.ini", 3, 6}, "wrong");
    const std::string text = print(formatText);
    EXPECT_THAT(text, Not(HasSubstr("\033")));
    EXPECT_THAT(text, HasSubstr("a\\u001b[2J\\n.ini:2:2: error: wrong \\u001b]0;x\\u0007 \\udcff"));
    EXPECT_THAT(text, HasSubstr("    \xc3\xa4 = \\udcff\n        ^\n"));
}

TEST_F(FormatsTest, SummaryCountsAllKinds) {
    EXPECT_EQ(summaryOf(mReport), "nothing found in 57 files, 1,240 sets");
    add("first", Severity::WARNING, {}, "");
    add("first", Severity::WARNING, {}, "");
    mReport.sets = 1;
    mReport.files = 1234567;
    mReport.allowed = {{{}, AllowedBy::COMMENT, "x"}, {{}, AllowedBy::SETTINGS, "x"}};
    EXPECT_EQ(summaryOf(mReport), "2 warnings in 1,234,567 files, 1 set; 2 findings allowed");
    mReport.allowed = {{{}, AllowedBy::BASELINE, "x"}};
    mReport.hasBaseline = true;
    mReport.gone = 2;
    EXPECT_EQ(summaryOf(mReport),
              "2 warnings in 1,234,567 files, 1 set; 1 finding known, 2 known findings gone");
}

TEST_F(FormatsTest, JsonHasTheAgreedMembers) {
    EXPECT_EQ(print(formatJson),
              "{\"tree\":\"line\",\"sets\":1240,\"files\":57,\"findings\":[]}\n");
    add("first", Severity::ERROR, {"a.ini", 2, 3}, "wrong \"x\" \xff\n");
    mReport.findings.back().sets = {"model=2"};
    mReport.findings.back().related = {{{"b.ini", 7, 1}, "shadows"}};
    add("second", Severity::NOTE, {"b.ini", 0, 0}, "m");
    EXPECT_EQ(print(formatJson),
              "{\"tree\":\"line\",\"sets\":1240,\"files\":57,\"findings\":[\n"
              "{\"rule\":\"first\",\"severity\":\"error\",\"file\":\"a.ini\",\"line\":2,"
              "\"column\":3,\"message\":\"wrong \\\"x\\\" \\udcff\\n\",\"sets\":[\"model=2\"],"
              "\"related\":[{\"file\":\"b.ini\",\"line\":7,\"message\":\"shadows\"}]},\n"
              "{\"rule\":\"second\",\"severity\":\"note\",\"file\":\"b.ini\",\"line\":0,"
              "\"column\":0,\"message\":\"m\",\"sets\":[\"all\"],\"related\":[]}\n]}\n");
}

TEST_F(FormatsTest, SarifHasRulesResultsAndSuppressions) {
    add("second", Severity::ERROR, {"a.ini", 3, 3}, "wrong \xff");
    mReport.findings.back().related = {{{"b c.ini", 7, 0}, "shadows"}};
    add("second", Severity::NOTE, {"x\xff.ini", 0, 0}, "m");
    mReport.allowed = {{finding("first", Severity::OFF, {"a.ini", 1, 1}, "m"), AllowedBy::COMMENT,
                        "on purpose"},
                       {finding("first", Severity::ERROR, {"a.ini", 1, 1}, "m"),
                        AllowedBy::BASELINE, "known"}};
    const Json run = Json::parse(print(formatSarif))["runs"][0];
    EXPECT_THAT(run["tool"]["driver"]["rules"], SizeIs(2));
    EXPECT_EQ(run["tool"]["driver"]["rules"][1]["defaultConfiguration"]["level"], "note");
    EXPECT_EQ(run["originalUriBaseIds"]["TREE"]["uri"], "file:///line/");
    ASSERT_THAT(run["results"], SizeIs(4));
    const Json& first = run["results"][0];
    EXPECT_EQ(first["ruleId"], "second");
    EXPECT_EQ(first["ruleIndex"], 1);
    EXPECT_EQ(first["level"], "error");
    EXPECT_EQ(first["message"]["text"], "wrong \\udcff");
    const Json& region = first["locations"][0]["physicalLocation"]["region"];
    EXPECT_EQ(region["startLine"], 3);
    EXPECT_EQ(region["startColumn"], 2) << "columns count code points";
    EXPECT_EQ(first["relatedLocations"][0]["physicalLocation"]["artifactLocation"]["uri"],
              "b%20c.ini");
    EXPECT_EQ(first["suppressions"], Json::array());
    EXPECT_EQ(run["results"][1]["locations"][0]["physicalLocation"]["artifactLocation"]["uri"],
              "x%FF.ini");
    EXPECT_FALSE(run["results"][1]["locations"][0]["physicalLocation"].contains("region"));
    EXPECT_EQ(run["results"][2]["level"], "none");
    EXPECT_EQ(run["results"][2]["suppressions"][0]["kind"], "inSource");
    EXPECT_EQ(run["results"][2]["suppressions"][0]["justification"], "on purpose");
    EXPECT_EQ(run["results"][3]["suppressions"][0]["kind"], "external");
    // Two equal findings differ in their fingerprints.
    EXPECT_NE(run["results"][2]["partialFingerprints"], run["results"][3]["partialFingerprints"]);
    EXPECT_FALSE(first.contains("baselineState"));
    mReport.hasBaseline = true;
    const Json again = Json::parse(print(formatSarif))["runs"][0]["results"];
    EXPECT_EQ(again[0]["baselineState"], "new");
    EXPECT_EQ(again[3]["baselineState"], "unchanged");
}

TEST_F(FormatsTest, GithubEscapesWhatEndsAPart) {
    add("first", Severity::ERROR, {"a,b:c%.ini", 2, 3}, "50% is\nwrong: x, y");
    mReport.findings.back().related = {{{"b.ini", 7, 1}, "shadows"}};
    mReport.findings.back().sets = {"model=2"};
    add("second", Severity::NOTE, {"b.ini", 0, 0}, "m");
    add("second", Severity::WARNING, {"b.ini", 1, 0}, "m");
    EXPECT_EQ(print(formatGithub),
              "::error file=here/a%2Cb%3Ac%25.ini,line=2,col=3,title=first::50%25 is\\nwrong: x, "
              "y%0Ahere/b.ini:7: shadows%0Ain model=2\n"
              "::notice file=here/b.ini,title=second::m\n"
              "::warning file=here/b.ini,line=1,title=second::m\n"
              "1 error, 1 warning, 1 note in 57 files, 1,240 sets\n");
}

TEST_F(FormatsTest, JunitHasACaseForEachRule) {
    add("first", Severity::ERROR, {"a.ini", 2, 3}, "wrong");
    add("first", Severity::NOTE, {"a.ini", 4, 0}, "doubtful");
    const std::string text = print(formatJunit);
    tinyxml2::XMLDocument document;
    ASSERT_EQ(document.Parse(text.c_str()), tinyxml2::XML_SUCCESS) << text;
    const auto* suite = document.RootElement()->FirstChildElement("testsuite");
    ASSERT_NE(suite, nullptr);
    EXPECT_STREQ(suite->Attribute("tests"), "2");
    EXPECT_STREQ(suite->Attribute("failures"), "1");
    const auto* first = suite->FirstChildElement("testcase");
    EXPECT_STREQ(first->Attribute("name"), "first");
    EXPECT_STREQ(first->Attribute("classname"), "mlktree.family");
    const auto* failure = first->FirstChildElement("failure");
    EXPECT_STREQ(failure->Attribute("message"), "1 finding: a <first> rule");
    EXPECT_STREQ(failure->Attribute("type"), "error");
    EXPECT_STREQ(failure->GetText(), "\na.ini:2:3: error: wrong\n");
    EXPECT_STREQ(first->FirstChildElement("system-out")->GetText(), "\na.ini:4: note: doubtful\n");
    const auto* second = first->NextSiblingElement("testcase");
    EXPECT_STREQ(second->Attribute("name"), "second");
    EXPECT_EQ(second->FirstChildElement(), nullptr);
}

TEST_F(FormatsTest, JunitIsWellFormedForAllBytes) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    bytes += "\xef\xbf\xbe\xef\xbf\xbf\xed\xa0\x80]]>";
    add("first", Severity::ERROR, {bytes, 2, 3}, bytes);
    mReport.findings.back().related = {{{bytes, 1, 1}, bytes}};
    const std::string text = print(formatJunit);
    tinyxml2::XMLDocument document;
    ASSERT_EQ(document.Parse(text.c_str()), tinyxml2::XML_SUCCESS);
    for (const char byte : text) {
        EXPECT_TRUE(static_cast<unsigned char>(byte) >= 0x20 || byte == '\n');
    }
    EXPECT_THAT(text, Not(HasSubstr("\xef\xbf\xbe")));
    EXPECT_THAT(text, Not(HasSubstr("]]>")));
    // The other formats hold, too.
    EXPECT_TRUE(Json::parse(print(formatSarif)).is_object());
    EXPECT_THAT(print(formatText), Not(HasSubstr("\033")));
}

TEST_F(FormatsTest, ThresholdDecides) {
    add("first", Severity::WARNING, {}, "");
    EXPECT_TRUE(isFailed(mReport.findings, Severity::WARNING));
    EXPECT_TRUE(isFailed(mReport.findings, Severity::NOTE));
    EXPECT_FALSE(isFailed(mReport.findings, Severity::ERROR));
    EXPECT_FALSE(isFailed({}, Severity::NOTE));
}

}  // namespace

}  // namespace mlk::tree
