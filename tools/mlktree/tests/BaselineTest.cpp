#include "tools/mlktree/Baseline.h"

#include <gmock/gmock.h>

#include "tools/mlktree/Tree.h"
#include "tools/mlktree/tests/Harness.h"

namespace mlk::tree {

namespace {

using ::testing::HasSubstr;
using ::testing::SizeIs;

CheckReport reportOf(std::vector<Finding> findings) {
    CheckReport report;
    report.findings = std::move(findings);
    return report;
}

Finding at(size_t line, const std::string& message = "wrong") {
    return finding("tab", Severity::ERROR, {"a.ini", line, 1}, message);
}

TEST(BaselineTest, KnowsFindingsAfterTheirLinesHaveMoved) {
    const Baseline baseline({at(1, "line 5 replaces it"), at(2)},
                            linesOf({{"a.ini", "a = 1\nb = 2\n"}}));
    CheckReport report = reportOf({at(3, "line 8 replaces it"), at(4)});
    baseline.apply(report, linesOf({{"a.ini", "# new\n\n  a = 1\nb = 2\n"}}));
    EXPECT_THAT(report.findings, SizeIs(0));
    EXPECT_THAT(report.allowed, SizeIs(2));
    EXPECT_EQ(report.allowed[0].by, AllowedBy::BASELINE);
    EXPECT_TRUE(report.hasBaseline);
    EXPECT_EQ(report.gone, 0U);
}

TEST(BaselineTest, KnowsEachFindingAsOftenAsItWas) {
    const LineOf lines = linesOf({{"a.ini", "a = 1\na = 1\na = 1\n"}});
    const Baseline baseline({at(1), at(2)}, lines);
    CheckReport report = reportOf({at(1), at(2), at(3)});
    baseline.apply(report, lines);
    EXPECT_THAT(report.findings, SizeIs(1));
    EXPECT_EQ(report.findings[0].place.line, 3U);
}

TEST(BaselineTest, KnowsNothingElse) {
    const LineOf lines = linesOf({{"a.ini", "a = 1\nb = 2\n"}, {"b.ini", "a = 1\n"}});
    const Baseline baseline({at(1)}, lines);
    for (const Finding& other :
         {at(2), at(1, "other"), finding("nul-byte", Severity::ERROR, {"a.ini", 1, 1}, "wrong"),
          finding("tab", Severity::ERROR, {"b.ini", 1, 1}, "wrong")}) {
        CheckReport report = reportOf({other});
        baseline.apply(report, lines);
        EXPECT_THAT(report.findings, SizeIs(1)) << other.message;
        EXPECT_EQ(report.gone, 1U);
    }
}

TEST(BaselineTest, ReadsWhatItWrites) {
    const LineOf lines = linesOf({{"a.ini", "a = \xff\"\\\n"}, {"\xfe", "x\n"}});
    const std::vector<Finding> findings = {at(1, "wrong \xff \"q\" \\ \xc3\xa4"),
                                           at(1, "wrong \xff \"q\" \\ \xc3\xa4"),
                                           finding("tab", Severity::NOTE, {"\xfe", 0, 0}, "whole")};
    const Baseline baseline(findings, lines);
    EXPECT_EQ(baseline.size(), 3U);
    const Baseline again = Baseline::parse(baseline.text(), "known.json");
    EXPECT_EQ(again.text(), baseline.text());
    CheckReport report = reportOf(findings);
    again.apply(report, lines);
    EXPECT_THAT(report.findings, SizeIs(0));
    EXPECT_EQ(report.gone, 0U);
    EXPECT_EQ(Baseline::parse(Baseline().text(), "").size(), 0U);
}

TEST(BaselineTest, RefusesWhatIsNone) {
    for (const char* text :
         {"", "[]", "{", "{\"version\":2,\"findings\":[]}", "{\"version\":1}",
          "{\"version\":1,\"findings\":{}}", "{\"version\":1,\"findings\":[7]}",
          "{\"version\":1,\"findings\":[{\"rule\":\"a\",\"file\":\"b\",\"message\":\"c\"}]}",
          "{\"version\":1,\"findings\":[{\"rule\":1,\"file\":\"b\",\"message\":\"c\",\"text\":"
          "\"\"}]}"}) {
        try {
            (void)Baseline::parse(text, "known.json");
            ADD_FAILURE() << text;
        } catch (const UsageError& error) {
            EXPECT_THAT(error.what(), HasSubstr("known.json is no baseline of mlktree: ")) << text;
        }
    }
}

TEST(FingerprintsTest, StayTheSameWhenLinesMove) {
    Fingerprints before(linesOf({{"a.ini", "a = 1\n"}}));
    Fingerprints after(linesOf({{"a.ini", "\n\na = 1\na = 1\n"}}));
    const std::string print = before.next(at(1));
    EXPECT_EQ(print, after.next(at(3)));
    EXPECT_NE(print, after.next(at(4)));
    EXPECT_THAT(print, SizeIs(16));
}

}  // namespace

}  // namespace mlk::tree
