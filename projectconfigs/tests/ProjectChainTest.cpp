#include "projectconfigs/ProjectParser.h"

#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "host/testing/LogCapture.h"
#include "projectconfigs/tests/ProjectFiles.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using mlk::testing::LogCapture;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::StartsWith;

class ProjectChainTest : public ::testing::Test, protected ProjectFiles {
  protected:
    std::vector<std::string> debugLines() const {
        return mLog.texts(ANDROID_LOG_DEBUG, "MlkProjectConfigs");
    }
    std::vector<std::string> errors() const {
        return mLog.texts(ANDROID_LOG_ERROR, "MlkProjectConfigs");
    }

    LogCapture mLog;
};

TEST_F(ProjectChainTest, StartsEmpty) {
    EXPECT_EQ(dump(),
              "  Customer ID: \n  Project ID: 0\n  Project max index: 0\n  Sys ini file: \n"
              "  Project ini file: \n  Board ini file: \n");
}

TEST_F(ProjectChainTest, ReadsTheChainOfFiles) {
    customer("# the customer\nCUSTOMER_ID = \"77\" # comment\nSYS_INI=\"/tvconfigs/sys.ini\"\n");
    system("Model_1=/tvconfigs/model/A.ini\nModel_2 = \"/tvdata/B.ini\" # B\n");
    dir().write("tvdata/B.ini", "[S]\nk=B\n");
    dir().write("impdata/board.ini", "[S]\nl=board\n");
    update(2, "/impdata/board.ini");
    EXPECT_EQ(dump(),
              "  Customer ID: 77\n  Project ID: 2\n  Project max index: 2\n"
              "  Sys ini file: " +
                      tvconfigs() +
                      "/sys.ini\n"
                      "  Project ini file: " +
                      tvdata() +
                      "/B.ini\n"
                      "  Board ini file: " +
                      impdata() +
                      "/board.ini\n"
                      "    [S]:k=B\n    [S]:l=board\n");
}

TEST_F(ProjectChainTest, NullPathChangesNothing) {
    writeSet("[S]\nk=v\n");
    update();
    const std::string before = dump();
    parser().update(nullptr, 5, "/tvdata/board.ini");
    EXPECT_EQ(dump(), before);
}

TEST_F(ProjectChainTest, LongerCustomerAndSystemLinesAreCutAndReported) {
    customer("CUSTOMER_ID=" + std::string(255 - 12, 'c') + "\nSYS_INI=/tvconfigs/sys.ini" +
             std::string(300, ' ') + "#\n");
    system("Model_1=" + std::string(300, ' ') + "/tvconfigs/lost.ini\nModel_2=x\n");
    update();
    EXPECT_EQ(parser().getCustomerId(), std::string(255 - 12, 'c'));
    EXPECT_EQ(parser().getProjectMaxIdx(), 2U);
    EXPECT_THAT(errors(),
                ElementsAre(tvconfigs() + "/customer.ini:2: line longer than 255 bytes, its rest "
                                          "is skipped",
                            tvconfigs() + "/sys.ini:1: line longer than 255 bytes, its rest is "
                                          "skipped"));
}

TEST_F(ProjectChainTest, CustomerWordsCountAnywhereCommentsIncluded) {
    customer("#CUSTOMER_ID=7\n  # SYS_INI x =/tvconfigs/sys.ini\ncustomer_id=8\n");
    system("Model_3=x\n");
    update();
    EXPECT_EQ(parser().getCustomerId(), "7");
    EXPECT_EQ(parser().getProjectMaxIdx(), 3U);
}

TEST_F(ProjectChainTest, LaterCustomerLineWins) {
    customer("CUSTOMER_ID=1\nCUSTOMER_ID= 2 ;\nCUSTOMER_ID SYS_INI=/tvdata\n");
    update();
    EXPECT_EQ(parser().getCustomerId(), "/tvdata") << "an id is no path";
}

TEST_F(ProjectChainTest, LinesWithoutEqualsAreSkippedAndReported) {
    customer("CUSTOMER_ID=1\nCUSTOMER_ID\nSYS_INI=/tvconfigs/sys.ini\nSYS_INI\n");
    system("Model_1=/tvconfigs/model/A.ini\nModel_9\n# Model_ lines\n");
    write("model/A.ini", "[S]\nk=v\n");
    update();
    EXPECT_EQ(parser().getCustomerId(), "1");
    EXPECT_EQ(parser().getProjectMaxIdx(), 1U);
    EXPECT_EQ(items(), "[S]:k=v;");
    EXPECT_THAT(errors(), ElementsAre(tvconfigs() + "/customer.ini:2: no \"=\", line skipped",
                                      tvconfigs() + "/customer.ini:4: no \"=\", line skipped",
                                      tvconfigs() + "/sys.ini:2: no \"=\", line skipped",
                                      tvconfigs() + "/sys.ini:3: no \"=\", line skipped"));
}

TEST_F(ProjectChainTest, CommentedOutModelCountsForTheMaximum) {
    writeSet("");
    system("Model_1=/a\nModel_2=/b\n#Model_7=/c\n");
    update();
    EXPECT_EQ(parser().getProjectMaxIdx(), 7U);
}

TEST_F(ProjectChainTest, MaximumOnlyGrows) {
    writeSet("");
    system("Model_5=/a\n");
    update();
    system("Model_2=/a\n");
    update();
    EXPECT_EQ(parser().getProjectMaxIdx(), 5U);
}

TEST_F(ProjectChainTest, ModelNumbersAreReadLeniently) {
    writeSet("");
    system("[MODELS]\nMy Model_ 3 = /three\nModel_x=/zero\nModel_4th=/four\nmodel_9=/nine\n"
           "path=Model_6\n");
    update(0);
    EXPECT_EQ(parser().getProjectMaxIdx(), 6U);
    EXPECT_THAT(dump(), ::testing::HasSubstr("  Project ini file: /zero\n"));
    update(3);
    EXPECT_THAT(dump(), ::testing::HasSubstr("  Project ini file: /three\n"));
    update(4);
    EXPECT_THAT(dump(), ::testing::HasSubstr("  Project ini file: /four\n"));
    update(6);
    EXPECT_THAT(dump(), ::testing::HasSubstr("  Project ini file: Model_6\n"));
}

TEST_F(ProjectChainTest, NegativeModelNumberIsAHugeMaximum) {
    writeSet("");
    system("Model_-1=/minus\n");
    update(-1);
    EXPECT_EQ(parser().getProjectMaxIdx(), 0xffffffffU);
    EXPECT_THAT(dump(), ::testing::HasSubstr("  Project ini file: /minus\n"));
    EXPECT_THAT(dump(),
                ::testing::HasSubstr("  Project ID: -1\n  Project max index: 4294967295\n"));
}

TEST_F(ProjectChainTest, LaterLineOfOneNumberWins) {
    writeSet("");
    system("Model_1=/first\nModel_1=/second\n");
    update();
    EXPECT_THAT(dump(), ::testing::HasSubstr("  Project ini file: /second\n"));
}

TEST_F(ProjectChainTest, ProjectFileStaysWhenNoLineMatches) {
    writeSet("[S]\nk=v\n");
    update(1);
    update(8);
    EXPECT_EQ(items(), "[S]:k=v;");
    EXPECT_THAT(dump(), ::testing::HasSubstr("  Project ID: 8\n"));
}

TEST_F(ProjectChainTest, UpdateReadsTheFilesAsTheyAreNow) {
    writeSet("[S]\nold=1\n");
    update();
    write("model/A.ini", "[S]\nnew=2\n");
    update();
    EXPECT_EQ(items(), "[S]:new=2;");
}

TEST_F(ProjectChainTest, CustomerFileWithoutSystemFileKeepsTheFormerOne) {
    writeSet("[S]\nk=v\n");
    update();
    customer("CUSTOMER_ID=2\n");
    update();
    EXPECT_EQ(items(), "[S]:k=v;");
    EXPECT_EQ(parser().getCustomerId(), "2");
    ASSERT_EQ(remove((tvconfigs() + "/customer.ini").c_str()), 0);
    update();
    EXPECT_EQ(items(), "[S]:k=v;");
    EXPECT_EQ(parser().getCustomerId(), "2");
}

TEST_F(ProjectChainTest, BoardItemsReplaceProjectItems) {
    writeSet("[S]\nk=project\nl=project\n");
    const std::string board = write("board.ini", "[S]\nk=board\n");
    update(1, "/tvconfigs/board.ini");
    EXPECT_EQ(items(), "[S]:k=board;[S]:l=project;");
    EXPECT_THAT(debugLines(), ElementsAre(StartsWith("[addNewItem ")));
}

TEST_F(ProjectChainTest, DefaultBoardHasNoFile) {
    writeSet("[S]\nk=project\n");
    write("board.ini", "[S]\nk=board\n");
    update(1, "/tvconfigs/board.ini");
    mLog.clear();
    update(1, "DEFAULT_BOARD_ID");
    EXPECT_EQ(items(), "[S]:k=project;");
    EXPECT_THAT(dump(), ::testing::HasSubstr("  Board ini file: \n"));
    EXPECT_THAT(mLog.lines(), IsEmpty());
}

TEST_F(ProjectChainTest, OnlyTheExactDefaultBoardMeansNone) {
    writeSet("[S]\nk=project\n");
    update(1, "DEFAULT_BOARD_ID\r");
    EXPECT_THAT(dump(), ::testing::HasSubstr("  Board ini file: DEFAULT_BOARD_ID\n"));
    EXPECT_THAT(debugLines(), ElementsAre(MatchesRegex("\\[parse_project_ini [0-9]+\\] "
                                                       "DEFAULT_BOARD_ID don't exist.")));
}

TEST_F(ProjectChainTest, BoardIdIsCleanedLikeAValue) {
    writeSet("[S]\nk=project\n");
    write("board.ini", "[S]\nk=board\n");
    update(1, " \"/tvconfigs/board.ini\"; # board\r");
    EXPECT_EQ(get("[S]", "k"), "board");
}

TEST_F(ProjectChainTest, EmptyBoardIdReadsTheFormerBoardAgain) {
    writeSet("[S]\nk=project\n");
    write("board.ini", "[S]\nk=board\n");
    update(1, "/tvconfigs/board.ini");
    write("board.ini", "[S]\nk=board2\n");
    update(1, "");
    EXPECT_EQ(get("[S]", "k"), "board2");
    EXPECT_THAT(dump(), ::testing::HasSubstr("  Board ini file: " + tvconfigs() + "/board.ini\n"));
}

TEST_F(ProjectChainTest, EmptyBoardIdWithoutFormerBoardIsAMissingFile) {
    writeSet("[S]\nk=project\n");
    update(1, "");
    EXPECT_EQ(items(), "[S]:k=project;");
    EXPECT_THAT(debugLines(),
                ElementsAre(MatchesRegex("\\[parse_project_ini [0-9]+\\]  don't exist.")));
}

TEST_F(ProjectChainTest, MissingFilesAreLoggedAndSkipped) {
    update();
    EXPECT_THAT(debugLines(), ElementsAre(MatchesRegex("\\[parse_customer_ini [0-9]+\\] " +
                                                       tvconfigs() + "/customer.ini don't exist."),
                                          MatchesRegex("\\[parse_sys_ini [0-9]+\\]  don't exist."),
                                          MatchesRegex("\\[parse_project_ini [0-9]+\\]  don't "
                                                       "exist.")));
    EXPECT_EQ(items(), "");
}

TEST_F(ProjectChainTest, WhatIsNoFileReadsAsEmpty) {
    writeSet("[S]\nk=v\n");
    ASSERT_EQ(mkfifo((tvconfigs() + "/fifo").c_str(), 0600), 0);
    update(1, "/tvconfigs/fifo");
    EXPECT_EQ(items(), "[S]:k=v;");
    update(1, "/tvconfigs/model");
    EXPECT_EQ(items(), "[S]:k=v;");
    update(1, "/dev/zero");
    EXPECT_EQ(items(), "[S]:k=v;");
    customer("SYS_INI=/tvconfigs/fifo\n");
    update();
    EXPECT_EQ(items(), "[S]:k=v;") << "the former project file is read again";
    EXPECT_THAT(errors(), Contains(tvconfigs() + "/fifo: cannot be read: not a regular file"));
}

TEST_F(ProjectChainTest, EmptyFilesGiveNothing) {
    customer("");
    update();
    EXPECT_EQ(items(), "");
    writeSet("");
    update();
    EXPECT_EQ(items(), "");
}

TEST_F(ProjectChainTest, NullProjectPathIsLogged) {
    ProjectParserPeer::parseProjectIni(parser(), nullptr);
    EXPECT_THAT(debugLines(), ElementsAre("path is null"));
    EXPECT_THAT(debugLines(), Not(Contains(StartsWith("["))));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
