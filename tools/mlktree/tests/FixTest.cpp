#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <string>

#include "host/testing/TempDir.h"
#include "host/text/Utf8.h"
#include "tools/mlktree/CommandLine.h"
#include "tools/mlktree/Examination.h"
#include "tools/mlktree/Fixes.h"
#include "tools/mlktree/tests/Harness.h"

namespace mlk::tree {

namespace {

class FixTest : public ::testing::Test {
  protected:
    // The diff of a tree with one model and these files.
    std::string diff() const {
        const Tree tree(mDir.path(), {});
        const Settings settings;
        const TreeProperties properties(mDir.path("data/property"), {});
        const ProductLine line(tree, settings, properties, {});
        std::string all;
        for (const MendedFile& file : mend(line)) {
            all += diffOf(file, line.sources().lines(file.path));
        }
        return all;
    }
    std::string mended(const std::string& path) const {
        const Tree tree(mDir.path(), {});
        const Settings settings;
        const TreeProperties properties(mDir.path("data/property"), {});
        const ProductLine line(tree, settings, properties, {});
        for (const MendedFile& file : mend(line)) {
            if (file.path == path) {
                return file.text;
            }
        }
        return "nothing to mend";
    }
    // Whether check finds something in the last line of the file.
    bool isFoundAtEnd(const std::string& path) const {
        const Tree tree(mDir.path(), {});
        const Settings settings;
        const TreeProperties properties(mDir.path("data/property"), {});
        const ProductLine line(tree, settings, properties, {});
        const std::vector<Finding> found = examine(line, true).findings;
        return std::any_of(found.begin(), found.end(), [&](const Finding& each) {
            return each.place.file == path && each.place.line == line.sources().lines(path).size();
        });
    }
    void SetUp() override {
        mDir.write("tvconfigs/customer.ini", "CUSTOMER_ID=1\nSYS_INI=/tvconfigs/s.ini\n");
        mDir.write("tvconfigs/s.ini", "Model_1=/tvconfigs/model/a.ini\n");
        mDir.write("tvconfigs/model/a.ini",
                   "[COUNTRY]\nCOUNTRY_PATH=/tvconfigs/c.txt\n[TV_LANGUAGE]\n"
                   "LANGUAGE_PATH=/tvconfigs/l.txt\n[LiveTV]\nTvConfig=/tvconfigs/tv/t.config\n");
        mDir.write("tvconfigs/c.txt", "GERMANY,DE\n");
        mDir.write("tvconfigs/l.txt", "German,deu\n");
        mDir.write("tvconfigs/tv/t.config", "persist.vendor.mlk.tv.enable_av=true\n");
    }
    const mlk::testing::TempDir mDir;
};

TEST_F(FixTest, ASoundTreeStaysAsItIs) {
    EXPECT_EQ(diff(), "");
}

TEST_F(FixTest, CarriageReturnsGoWhereTheyStay) {
    mDir.write("tvconfigs/c.txt", "GERMANY\r\nSWEDEN,SE\r\n");
    mDir.write("tvconfigs/l.txt", "German\r\n");
    mDir.write("tvconfigs/s.ini", "Model_1=/tvconfigs/model/a.ini\r\n");
    EXPECT_EQ(mended("tvconfigs/c.txt"), "GERMANY\nSWEDEN,SE\n");
    EXPECT_EQ(mended("tvconfigs/l.txt"), "German\n");
    EXPECT_EQ(mended("tvconfigs/s.ini"), "Model_1=/tvconfigs/model/a.ini\n");
}

TEST_F(FixTest, CarriageReturnsAfterACommaStay) {
    mDir.write("tvconfigs/c.txt", "GERMANY,DE\r\nSWEDEN,SE\r\n");
    mDir.write("tvconfigs/l.txt", "German,deu\r\n");
    EXPECT_EQ(diff(), "");
}

// Each line, at the end of its file, is mended if and only if check finds something there.
TEST_F(FixTest, MendsWhatCheckFinds) {
    struct Case {
        const char* file;
        const char* line;
        bool isFound;
    };
    const Case cases[] = {
            {"tvconfigs/c.txt", "SWEDEN\r", true},
            {"tvconfigs/c.txt", "SWEDEN,SE\r", false},
            {"tvconfigs/c.txt", "\xEF\xBB\xBFSWEDEN,SE", true},
            {"tvconfigs/c.txt", "SWEDEN\xC2\xA0,SE", true},
            {"tvconfigs/c.txt", "SWEDEN,\xC2\xA0SE", false},
            {"tvconfigs/c.txt", "united-kingdom", true},
            {"tvconfigs/l.txt", "Swedish\r", true},
            {"tvconfigs/l.txt", "Swedish,swe\r", false},
            {"tvconfigs/s.ini", "Model_2=/tvconfigs/model/a.ini\r", true},
            {"tvconfigs/s.ini", "# the models\r", false},
            {"tvconfigs/s.ini", "\xC2\xA0", false},
            {"tvconfigs/customer.ini", "\xEF\xBB\xBF# a note", false},
            {"tvconfigs/customer.ini", "a note\xE2\x80\x8B", false},
            {"tvconfigs/model/a.ini", "KEY\t= 1", true},
            {"tvconfigs/model/a.ini", "  # a note", true},
            {"tvconfigs/model/a.ini", "\r# a note", false},
            {"tvconfigs/model/a.ini", "KEY\xC2\xA0= 1", true},
            {"tvconfigs/tv/t.config", "persist.vendor.mlk.tv.enable_av = true", true},
    };
    for (const auto& [file, line, isFound] : cases) {
        const std::string sound = mDir.read(file);
        mDir.write(file, sound + line + "\n");
        EXPECT_EQ(!diff().empty(), isFound) << diff();
        EXPECT_EQ(isFoundAtEnd(file), isFound) << file << ": " << line;
        mDir.write(file, sound);
    }
}

TEST_F(FixTest, CarriageReturnsThatReadersDropStay) {
    mDir.write("tvconfigs/model/a.ini", "[PANEL]\r\nm_pPanelName = a\r\n");
    mDir.write("tvconfigs/tv.config", "persist.vendor.mlk.tv.enable_av=true\r\n");
    EXPECT_EQ(diff(), "");
}

TEST_F(FixTest, AByteOrderMarkGoes) {
    mDir.write("tvconfigs/c.txt", "\xEF\xBB\xBFGERMANY,DE\n");
    EXPECT_EQ(mended("tvconfigs/c.txt"), "GERMANY,DE\n");
    mDir.write("tvconfigs/s.ini", "\xEF\xBB\xBF# models\nModel_1=/tvconfigs/model/a.ini\n");
    EXPECT_EQ(mended("tvconfigs/s.ini"), "# models\nModel_1=/tvconfigs/model/a.ini\n");
}

// The service looks for the keyword anywhere in the line, so that a mark before it does no harm.
TEST_F(FixTest, AnIdentityFileKeepsItsByteOrderMark) {
    const std::string mark(kByteOrderMark);
    mDir.write(kProjectIdPath, mark + "PROJECT_ID=1\n");
    mDir.write(kBoardIdPath, mark + "BOARD_ID=/tvconfigs/board/b.ini\n");
    mDir.write(kCountryIdPath, mark + "COUNTRY_ID=14\n");
    mDir.write("tvconfigs/board/b.ini", "[PANEL]\nm_pPanelName = b\n");
    const Tree tree(mDir.path(), {});
    const Settings settings;
    const TreeProperties properties(mDir.path("data/property"), {});
    Selection set;
    set.isOneSet = true;
    const ProductLine line(tree, settings, properties, set);
    EXPECT_EQ(line.models().at(0).index, 1);
    EXPECT_EQ(line.boardOfSet(), "tvconfigs/board/b.ini");
    EXPECT_EQ(line.countries().at(0), _tv_country{14});
    for (const char* const path : {kProjectIdPath, kBoardIdPath, kCountryIdPath}) {
        EXPECT_FALSE(isFoundAtEnd(path)) << path;
    }
    EXPECT_EQ(diff(), "");
}

TEST_F(FixTest, SpacesThatAreNoBlanksGo) {
    const std::string rest =
            "\"/tvconfigs/c.txt\"  # a\xC2\xA0 b\nNAME = \"L'\xC3\xA9tage\xC2\xA0 noir\"\n";
    mDir.write("tvconfigs/model/a.ini",
               "[COUNTRY]\nCOUNTRY_PATH\xE2\x80\x8B\xC2\xA0=\xC2\xA0" + rest);
    EXPECT_EQ(mended("tvconfigs/model/a.ini"), "[COUNTRY]\nCOUNTRY_PATH = " + rest);
}

TEST_F(FixTest, NamesOfListsAndFeaturesGetTheirBlanksBack) {
    mDir.write("tvconfigs/c.txt", "GERMANY\xC2\xA0,DE\n");
    mDir.write("tvconfigs/tv/t.config", "persist.vendor.mlk.tv.enable_av\xC2\xA0=\xC2\xA0true\n");
    EXPECT_EQ(mended("tvconfigs/c.txt"), "GERMANY,DE\n");
    EXPECT_EQ(mended("tvconfigs/tv/t.config"), "persist.vendor.mlk.tv.enable_av=true\n");
}

TEST_F(FixTest, APropertyLosesItsLineEnd) {
    mDir.write("data/property/persist.vendor.mlk.enstr", "true\r\n");
    mDir.write("data/property/persist.vendor.mlk.forcestr", "1\n2\n");
    mDir.write("data/property/ro.hardware", "skerry");
    EXPECT_EQ(mended("data/property/persist.vendor.mlk.enstr"), "true");
    EXPECT_EQ(diff(),
              "--- a/data/property/persist.vendor.mlk.enstr\n"
              "+++ b/data/property/persist.vendor.mlk.enstr\n"
              "@@ -1,1 +1,1 @@\n-true\r\n+true\n\\ No newline at end of file\n");
}

TEST_F(FixTest, EntriesOfListsLoseTheirBlanks) {
    mDir.write("tvconfigs/c.txt", " GERMANY ,DE\nSWEDEN \n,,FRANCE\t,FR\n\n");
    EXPECT_EQ(mended("tvconfigs/c.txt"), "GERMANY,DE\nSWEDEN\n,,FRANCE,FR\n\n");
}

// Without its blanks, what follows the comma would be the entry.
TEST_F(FixTest, AnEntryOfBlanksStays) {
    mDir.write("tvconfigs/c.txt", "SWEDEN\n ,GERMANY\n\xE2\x80\x8B,FRANCE\n,\xC2\xA0,ITALY\n");
    EXPECT_EQ(diff(), "");
    // At the beginning of the file, the mark says how it is encoded and belongs to no text.
    mDir.write("tvconfigs/c.txt", "\xEF\xBB\xBF,GERMANY\n");
    EXPECT_EQ(mended("tvconfigs/c.txt"), ",GERMANY\n");
}

TEST_F(FixTest, CountriesGetTheirCapitals) {
    mDir.write("tvconfigs/c.txt", "Germany,DE\nUnited Kingdom\nGermny\n");
    EXPECT_EQ(mended("tvconfigs/c.txt"), "GERMANY,DE\nUNITED_KINGDOM\nGermny\n");
}

TEST_F(FixTest, TvFeaturesLoseTheirBlanksAndGetTheirLineEnd) {
    mDir.write("tvconfigs/tv/t.config",
               "# a = b\npersist.vendor.mlk.tv.enable_av = true\nx= 1 # why\ny=2");
    EXPECT_EQ(mended("tvconfigs/tv/t.config"),
              "# a = b\npersist.vendor.mlk.tv.enable_av=true\nx= 1 # why\ny=2\n");
}

TEST_F(FixTest, ALastLineWithoutAnItemStaysUnended) {
    mDir.write("tvconfigs/tv/t.config", "a=1\n# end");
    mDir.write("tvconfigs/l.txt", "German");
    EXPECT_EQ(diff(), "");
}

TEST_F(FixTest, TabsBeforeTheEqualsSignAndIndentsOfCommentsGo) {
    mDir.write("tvconfigs/model/a.ini",
               "[PANEL]\n  # the panel\nm_pPanelName\t\t= a\tb\nWIDTH =\t5\nA B = 1 # x\t= 2\n");
    EXPECT_EQ(mended("tvconfigs/model/a.ini"),
              "[PANEL]\n# the panel\nm_pPanelName = a\tb\nWIDTH =\t5\nA B = 1 # x\t= 2\n");
}

TEST_F(FixTest, WhatLooksSimilarStays) {
    mDir.write("tvconfigs/s.ini", "  # the models\nModel_1=/tvconfigs/model/a.ini\n");
    mDir.write("tvconfigs/model/a.ini",
               "[PANEL]\nnote # width\t= 5\n[LiveTV]\nTvConfig=/tvconfigs/tv/t.config\n");
    mDir.write("tvconfigs/tv/t.config", "; a = b\n// c = d\n");
    EXPECT_EQ(diff(), "");
}

TEST_F(FixTest, ALastLineThatIsMendedStaysUnended) {
    mDir.write("tvconfigs/c.txt", "SWEDEN\nGermany");
    EXPECT_EQ(mended("tvconfigs/c.txt"), "SWEDEN\nGERMANY");
}

TEST_F(FixTest, AFileThatItsReaderRefusesIsNotTouched) {
    std::string tooMany;
    for (int i = 0; i < 70'000; ++i) {
        tooMany += "a" + std::to_string(i) + " = 1\n";
    }
    mDir.write("tvconfigs/tv/t.config", tooMany);
    EXPECT_EQ(diff(), "");
}

TEST_F(FixTest, AByteOrderMarkGoesFromAnyLine) {
    mDir.write("tvconfigs/c.txt", "SWEDEN,SE\n\xEF\xBB\xBFGERMANY,DE\n");
    EXPECT_EQ(mended("tvconfigs/c.txt"), "SWEDEN,SE\nGERMANY,DE\n");
}

TEST_F(FixTest, AMendedTreeHasNothingMoreToMend) {
    mDir.write("tvconfigs/c.txt", "\xEF\xBB\xBF Germany \r\n");
    mDir.write("tvconfigs/tv/t.config", " a = 1 ");
    for (const char* const path : {"tvconfigs/c.txt", "tvconfigs/tv/t.config"}) {
        mDir.write(path, mended(path));
    }
    EXPECT_EQ(diff(), "");
}

TEST_F(FixTest, TheDiffIsUnified) {
    mDir.write("tvconfigs/c.txt",
               "A,1\nB,2\nC,3\nD,4\nGermany\nE,5\nF,6\nG,7\nH,8\nI,9\nJ,0\nK\r\n");
    EXPECT_EQ(diff(),
              "--- a/tvconfigs/c.txt\n+++ b/tvconfigs/c.txt\n"
              "@@ -2,7 +2,7 @@\n B,2\n C,3\n D,4\n-Germany\n+GERMANY\n E,5\n F,6\n G,7\n"
              "@@ -9,4 +9,4 @@\n H,8\n I,9\n J,0\n-K\r\n+K\n");
}

TEST_F(FixTest, ChangesThatShareTheirContextAreOneHunk) {
    mDir.write("tvconfigs/c.txt", "A,1\nGermany\nC,3\nD,4\nE,5\nF,6\nG,7\nSweden\nH,8\n");
    EXPECT_EQ(diff(),
              "--- a/tvconfigs/c.txt\n+++ b/tvconfigs/c.txt\n"
              "@@ -1,9 +1,9 @@\n A,1\n-Germany\n+GERMANY\n C,3\n D,4\n E,5\n F,6\n G,7\n"
              "-Sweden\n+SWEDEN\n H,8\n");
}

TEST_F(FixTest, TheDiffShowsAMissingLineEnd) {
    mDir.write("tvconfigs/tv/t.config", "a=1");
    EXPECT_EQ(diff(),
              "--- a/tvconfigs/tv/t.config\n+++ b/tvconfigs/tv/t.config\n@@ -1,1 +1,1 @@\n"
              "-a=1\n\\ No newline at end of file\n+a=1\n");
}

// What a terminal gets.
std::string onTerminal(const std::vector<std::string>& words) {
    const int reader = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    EXPECT_EQ(grantpt(reader), 0);
    EXPECT_EQ(unlockpt(reader), 0);
    const int writer = open(ptsname(reader), O_RDWR | O_NOCTTY | O_CLOEXEC);
    std::ostringstream errors;
    Output output(writer);
    Environment environment{output, errors, false, "", false};
    EXPECT_EQ(runCommandLine(words, environment), ExitStatus::FOUND) << errors.str();
    std::string text(3500, '\0');  // a terminal holds at least this much until it is read
    const ssize_t got = ::read(reader, text.data(), text.size());
    text.resize(got > 0 ? static_cast<size_t>(got) : 0);
    close(writer);
    close(reader);
    return text;
}

TEST_F(FixTest, ATerminalShowsWhatIsMended) {
    using ::testing::HasSubstr;
    mDir.write("tvconfigs/c.txt", "SWEDEN\r\n\xEF\xBB\xBFGERMANY,DE\n");
    EXPECT_THAT(onTerminal({"fix", mDir.path(), "--color", "never"}),
                HasSubstr("\r\n-SWEDEN\\r\r\n+SWEDEN\r\n-\\ufeffGERMANY,DE\r\n+GERMANY,DE\r\n"));
    EXPECT_THAT(runMlktree({"fix", mDir.path(), "--color", "always"}).out,
                HasSubstr("\033[31m-SWEDEN\\r\033[0m\n"));
    EXPECT_THAT(runMlktree({"fix", mDir.path()}).out,
                HasSubstr("\n-SWEDEN\r\n+SWEDEN\n-\xEF\xBB\xBFGERMANY,DE\n+GERMANY,DE\n"))
            << "a program gets the bytes";
}

}  // namespace

}  // namespace mlk::tree
