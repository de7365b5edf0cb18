#include "projectconfigs/ProjectParser.h"

#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "host/testing/LogCapture.h"
#include "projectconfigs/tests/ProjectFiles.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using mlk::testing::LogCapture;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using namespace std::string_literals;

class ProjectGrammarTest : public ::testing::Test, protected ProjectFiles {
  protected:
    // The items of a project file of that text.
    std::string itemsOf(const std::string& projectText) {
        writeSet(projectText);
        update();
        return items();
    }
    std::vector<std::string> debugLines() const {
        return mLog.texts(ANDROID_LOG_DEBUG, "MlkProjectConfigs");
    }
    std::vector<std::string> errors() const {
        return mLog.texts(ANDROID_LOG_ERROR, "MlkProjectConfigs");
    }

    LogCapture mLog;
};

TEST_F(ProjectGrammarTest, ItemsAreOrderedByLengthFirst) {
    EXPECT_EQ(itemsOf("[AUDIO]\nB=1\nAA=2\nA=3\n[KEY]\nx=4\n"),
              "[KEY]:x=4;[AUDIO]:A=3;[AUDIO]:B=1;[AUDIO]:AA=2;");
}

TEST_F(ProjectGrammarTest, LastValueOfAKeyCountsAndIsLogged) {
    EXPECT_EQ(itemsOf("[S]\nkey=one\nother=x\nkey = two\n"), "[S]:key=two;[S]:other=x;");
    EXPECT_THAT(debugLines(),
                ElementsAre(MatchesRegex("\\[addNewItem [0-9]+\\] update value \\(one -> two\\) "
                                         "due to the same key \\(key\\)")));
}

TEST_F(ProjectGrammarTest, SameKeyInAnotherSectionIsAnotherItem) {
    EXPECT_EQ(itemsOf("[A]\nk=1\n[B]\nk=2\n[a]\nk=3\n"), "[A]:k=1;[B]:k=2;[a]:k=3;");
    EXPECT_THAT(debugLines(), IsEmpty());
}

TEST_F(ProjectGrammarTest, EmptyValueAndLineWithoutEquals) {
    EXPECT_EQ(itemsOf("[S]\nempty=\nwhole line\n"), "[S]:empty=;[S]:whole line=whole line;");
}

TEST_F(ProjectGrammarTest, SplitsAtTheFirstEquals) {
    EXPECT_EQ(itemsOf("[S]\na=b=c\n=v\n"), "[S]:=v;[S]:a=b=c;");
}

TEST_F(ProjectGrammarTest, TrimsSpacesButNotTabs) {
    EXPECT_EQ(itemsOf("[S]\n  a  =  1  \nb\t=\t2\t\n"), "[S]:a=1;[S]:b\t=\t2\t;");
}

TEST_F(ProjectGrammarTest, QuotedPathWithACommentIsCleanedAndPatched) {
    EXPECT_EQ(itemsOf("[S]\np = \"/tvconfigs/a/b.bin\"   # comment \"x\"\n"),
              "[S]:p=" + tvconfigs() + "/a/b.bin;");
}

TEST_F(ProjectGrammarTest, SemicolonsVanishButStartNoComment) {
    EXPECT_EQ(itemsOf("[S]\nk=a;b\n;c=d ; e\n"), "[S]:c=d  e;[S]:k=ab;");
}

TEST_F(ProjectGrammarTest, QuotesVanishWhereverTheyStand) {
    EXPECT_EQ(itemsOf("[S]\n\"k\"=\"a \"b\n"), "[S]:k=a b;");
}

TEST_F(ProjectGrammarTest, OnlyATrailingCarriageReturnGoes) {
    EXPECT_EQ(itemsOf("[S]\r\na=1\r\r\r\nb=2 \r\nc=3\r \nd=4\r\"\n\r\ne\r=5#\r\n"),
              "[S]:a=1;[S]:b=2;[S]:c=3\r;[S]:d=4\r;[S]:e\r=5;");
}

TEST_F(ProjectGrammarTest, SectionNameKeepsItsBracketsAndLosesItsComment) {
    EXPECT_EQ(itemsOf("[AUDIO]   # the audio\nk=1\n"), "[AUDIO]:k=1;");
    EXPECT_EQ(itemsOf("[AUDIO] ; text\nk=1\n"), "[AUDIO]  text:k=1;");
    EXPECT_EQ(itemsOf("[ LiveTV ]\nk=1\n[\nl=2\n"), "[:l=2;[ LiveTV ]:k=1;");
    EXPECT_EQ(itemsOf(" [S]\n"), ":[S]=[S];");
}

TEST_F(ProjectGrammarTest, ItemsBeforeTheFirstSectionHaveTheEmptyCategory) {
    EXPECT_EQ(itemsOf("k=1\n[S]\nl=2\n"), ":k=1;[S]:l=2;");
}

TEST_F(ProjectGrammarTest, SkipsEmptyLinesAndComments) {
    EXPECT_EQ(itemsOf("[S]\n\n\r\n#a=1\n# b\n\0c=2\n"s), "");
}

TEST_F(ProjectGrammarTest, IndentedCommentIsAnEmptyItem) {
    EXPECT_EQ(itemsOf("[S]\n  # comment\n"), "[S]:=;");
    EXPECT_EQ(itemsOf("[S]\n   \n"), "[S]:=;");
}

TEST_F(ProjectGrammarTest, LastLineNeedsNoLineFeedAndNulEndsALine) {
    EXPECT_EQ(itemsOf("[S]\na=1\0b=2\nc=3"s), "[S]:a=1;[S]:c=3;");
}

TEST_F(ProjectGrammarTest, PatchesEachPartitionOnceAtTheStartOnly) {
    EXPECT_EQ(itemsOf("[S]\na=/tvconfigs/x\nb=/tvdata/x\nc=/impdata/x\nd=/tvdataX/a\n"
                      "e=x/tvdata/a\nf=/tvdata/tvconfigs\ng=/TVDATA/a\nh=/tvdat\ni=/tvconfigs\n"),
              "[S]:a=" + tvconfigs() + "/x;[S]:b=" + tvdata() + "/x;[S]:c=" + impdata() +
                      "/x;[S]:d=" + tvdata() + "X/a;[S]:e=x/tvdata/a;[S]:f=" + tvdata() +
                      "/tvconfigs;[S]:g=/TVDATA/a;[S]:h=/tvdat;[S]:i=" + tvconfigs() + ";");
}

TEST_F(ProjectGrammarTest, PatchedPathIsNotPatchedAgain) {
    // Mount points that look like prefixes of one another.
    ProjectParser odd("/impdata/d", "/tvdata/c", "/i");
    writeSet("");
    const std::string model = tvconfigs() + "/model/A.ini";
    write("model/A.ini", "[S]\na=/tvconfigs/x\nb=/tvdata/x\nc=/impdata/x\n");
    system("Model_1=" + model + "\n");
    customer("SYS_INI=" + tvconfigs() + "/sys.ini\n");
    odd.update((tvconfigs() + "/customer.ini").c_str(), 1, "DEFAULT_BOARD_ID");
    EXPECT_EQ(odd.getInfo(ConfigKey("[S]", "a")), "/tvdata/c/x");
    EXPECT_EQ(odd.getInfo(ConfigKey("[S]", "b")), "/impdata/d/x");
    EXPECT_EQ(odd.getInfo(ConfigKey("[S]", "c")), "/i/x");
}

TEST_F(ProjectGrammarTest, KeysAndSectionsAreNotPatched) {
    EXPECT_EQ(itemsOf("[/tvdata]\n/tvdata/x=1\n"), "[/tvdata]:/tvdata/x=1;");
    EXPECT_EQ(itemsOf("[S]\n/tvdata/x\n"), "[S]:/tvdata/x=" + tvdata() + "/x;");
}

TEST_F(ProjectGrammarTest, MountPointThatIsItsPrefixPatchesToItself) {
    ProjectParser plain("/tvdata", "/tvconfigs", nullptr);
    const std::string file =
            write("customer.ini", "CUSTOMER_ID=/tvdata\nSYS_INI=/tvconfigs/absent/x.ini\n");
    plain.update(file.c_str(), 1, "/impdata/board.ini");
    std::ostringstream out;
    plain.dump(out);
    EXPECT_EQ(out.str(),
              "  Customer ID: /tvdata\n  Project ID: 1\n  Project max index: 0\n"
              "  Sys ini file: /tvconfigs/absent/x.ini\n  Project ini file: \n"
              "  Board ini file: /board.ini\n");
}

TEST_F(ProjectGrammarTest, LinesUpToTheLimitAreWhole) {
    const std::string value(1023 - 2, 'v');
    EXPECT_EQ(itemsOf("[S]\nk=" + value + "\nl=1\n"), "[S]:k=" + value + ";[S]:l=1;");
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(ProjectGrammarTest, LongerProjectLineIsCutAndReported) {
    const std::string value(1023 - 2, 'v');
    EXPECT_EQ(itemsOf("[S]\nk=" + value + "w\nl=1\n"), "[S]:k=" + value + ";[S]:l=1;");
    EXPECT_THAT(errors(), ElementsAre(tvconfigs() + "/model/A.ini:2: line longer than 1023 bytes, "
                                                    "its rest is skipped"));
}

// A partition without a path becomes the empty text.
TEST_F(ProjectGrammarTest, AValueOfAPartitionAloneMayBecomeEmpty) {
    const std::string path = write("a.ini", "[S]\na=/tvdata\nb=/impdata/x\nc=/tvconfigs\n");
    ProjectFileReader reader(nullptr, nullptr, nullptr, nullptr);
    ItemStore read;
    EXPECT_TRUE(reader.parse_project_ini(path.c_str(), read));
    std::ostringstream out;
    read.write(out, "");
    EXPECT_EQ(out.str(), "[S]:a=\n[S]:b=/x\n[S]:c=\n");
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
