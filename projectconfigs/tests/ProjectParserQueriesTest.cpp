#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

#include "host/testing/AddressLimit.h"
#include "host/testing/LogCapture.h"
#include "host/testing/ReadHook.h"
#include "host/testing/Sanitizers.h"
#include "projectconfigs/FileDelivery.h"
#include "projectconfigs/ProjectParser.h"
#include "projectconfigs/tests/ProjectFiles.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using mlk::testing::LogCapture;
using mlk::testing::ReadHook;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::Pair;

class ProjectParserQueriesTest : public ::testing::Test, protected ProjectFiles {
  protected:
    void load(const std::string& projectText) {
        writeSet(projectText);
        update();
        mLog.clear();
    }
    std::vector<std::string> listOf(const std::string& systemText) {
        customer("SYS_INI=/tvconfigs/sys.ini\n");
        system(systemText);
        update();
        mLog.clear();
        std::vector<std::string> list;
        parser().getProjectIniList(list);
        return list;
    }
    std::string readFile(const std::string& path) {
        const std::vector<uint8_t> data = ProjectParser::getTvFile(path);
        return {data.begin(), data.end()};
    }
    std::vector<std::string> debugLines() const {
        return mLog.texts(ANDROID_LOG_DEBUG, "MlkProjectConfigs");
    }
    std::vector<std::string> errors() const {
        return mLog.texts(ANDROID_LOG_ERROR, "MlkProjectConfigs");
    }

    LogCapture mLog;
};

TEST_F(ProjectParserQueriesTest, GetInfoGivesTheValueOrNothing) {
    load("[S]\nk=v\nempty=\n");
    EXPECT_EQ(get("[S]", "k"), "v");
    EXPECT_EQ(get("[S]", "empty"), "");
    EXPECT_EQ(get("[S]", "absent"), "");
    EXPECT_EQ(get("S", "k"), "");
    EXPECT_EQ(get("[S]", "K"), "");
}

TEST_F(ProjectParserQueriesTest, SetInfosReplacesButNeverAdds) {
    load("[S]\nk=v\nl=v\nm=v\n");
    ItemStore values;
    values.insert(values.section("[S]"), "k", "longer");
    values.insert(values.section("[S]"), "absent", "w");
    values.insert(values.section("[T]"), "k", "w");
    values.insert(values.section("[S]"), "m", "");
    mLog.clear();
    parser().setInfos(values);
    EXPECT_THAT(debugLines(),
                ElementsAre("\t[S]:k=longer", "\t[S]:m=", "\t[S]:absent=", "\t[T]:k="));
    EXPECT_EQ(get("[S]", "absent"), "");
    EXPECT_EQ(items(), "[S]:k=longer;[S]:l=v;[S]:m=;");
    update();
    EXPECT_EQ(get("[S]", "k"), "v") << "an update reads the file again";
}

TEST_F(ProjectParserQueriesTest, CategoryGivesItsItemsInByteOrderOfTheKeys) {
    load("[A]\nB=1\nAA=2\nA=3\n[B]\nC=4\n[AA]\nD=5\n");
    EXPECT_THAT(parser().getInfosByCategory("[A]"),
                ElementsAre(Pair("A", "3"), Pair("AA", "2"), Pair("B", "1")));
    EXPECT_THAT(debugLines(), ElementsAre("getInfosByCategory, key:A, value:3",
                                          "getInfosByCategory, key:B, value:1",
                                          "getInfosByCategory, key:AA, value:2"));
}

TEST_F(ProjectParserQueriesTest, CategoryIsExact) {
    load("first=0\n[AUDIO]\nk=1\n=2\n");
    EXPECT_THAT(parser().getInfosByCategory("AUDIO"), IsEmpty());
    EXPECT_THAT(parser().getInfosByCategory("[audio]"), IsEmpty());
    EXPECT_THAT(parser().getInfosByCategory("[AUDIO] "), IsEmpty());
    EXPECT_THAT(mLog.lines(), IsEmpty());
    EXPECT_THAT(parser().getInfosByCategory("[AUDIO]"), ElementsAre(Pair("", "2"), Pair("k", "1")));
    EXPECT_THAT(parser().getInfosByCategory(""), ElementsAre(Pair("first", "0")));
}

TEST_F(ProjectParserQueriesTest, ProjectListHasWhatFollowsTheModelFolder) {
    EXPECT_THAT(listOf("# the models\nModel_1=/tvconfigs/model/ProjectA.ini\n"
                       "Model_2 = \"/tvconfigs/model/ProjectB.ini\"\n"
                       "#Model_3=/tvconfigs/model/old/C.ini # gone\r\nModel_4=ProjectD.ini\n"
                       "model/Model_5=a/model/b\n  \"Model_\"6\nmodel_7=x\n"),
                ElementsAre("ProjectA.ini", "ProjectB.ini", "old/C.ini # gone\r", "_4=ProjectD.ini",
                            "Model_5=a/model/b", "del_6"));
}

TEST_F(ProjectParserQueriesTest, ProjectListIsAppended) {
    listOf("Model_1=model/A\n");
    std::vector<std::string> list = {"before"};
    parser().getProjectIniList(list);
    EXPECT_THAT(list, ElementsAre("before", "A"));
}

TEST_F(ProjectParserQueriesTest, ProjectListOfALongLine) {
    EXPECT_THAT(listOf("Model_1=model/" + std::string(300, 'x') + "\nModel_2=model/B\n"),
                ElementsAre(std::string(255 - 14, 'x'), "B"));
    EXPECT_THAT(errors(),
                ElementsAre(tvconfigs() + "/sys.ini:1: line longer than 255 bytes, its rest is "
                                          "skipped"));
}

TEST_F(ProjectParserQueriesTest, ProjectListWithoutSystemFile) {
    std::vector<std::string> list;
    parser().getProjectIniList(list);
    EXPECT_THAT(mLog.lines(), IsEmpty());
    listOf("Model_1=model/A\n");
    ASSERT_EQ(unlink((tvconfigs() + "/sys.ini").c_str()), 0);
    parser().getProjectIniList(list);
    EXPECT_THAT(list, IsEmpty());
    EXPECT_THAT(debugLines(), ElementsAre(MatchesRegex("\\[getProjectIniList [0-9]+\\] " +
                                                       tvconfigs() + "/sys.ini don't exist.")));
}

TEST_F(ProjectParserQueriesTest, DumpLogsSourcesAndTotal) {
    load("[S]\nk=v\nl=w\n");
    parser().dump();
    EXPECT_THAT(debugLines(),
                ElementsAre("ProjectConfigs:", "\tCustomer ID=1", "\tProject ID=1",
                            "\tProject max index=1", "\tSys ini file=" + tvconfigs() + "/sys.ini",
                            "\tProject ini file=" + tvconfigs() + "/model/A.ini",
                            "\tBoard ini file=", "\tProject total item=2"));
}

TEST_F(ProjectParserQueriesTest, DumpDetailLogsEveryItem) {
    load("[LONG]\nB=1\nAA=2\nA=3\n[S]\nk=v\n");
    update(1, "/impdata/b.ini");
    mLog.clear();
    parser().dumpDetail();
    EXPECT_THAT(debugLines(),
                ElementsAre("ProjectConfigs deatil:", "\tCustomer ID=1", "\tProject ID=1",
                            "\tProject max index=1", "\tSys ini file=" + tvconfigs() + "/sys.ini",
                            "\tProject ini file=" + tvconfigs() + "/model/A.ini",
                            "\tBoard ini file=" + impdata() + "/b.ini", "\t[S]:k=v", "\t[LONG]:A=3",
                            "\t[LONG]:B=1", "\t[LONG]:AA=2"));
}

TEST_F(ProjectParserQueriesTest, StreamDumpHasSourcesAndItems) {
    load("[LONG]\nA=3\n[S]\nk=a=b\n");
    EXPECT_EQ(dump(),
              "  Customer ID: 1\n  Project ID: 1\n  Project max index: 1\n"
              "  Sys ini file: " +
                      tvconfigs() +
                      "/sys.ini\n"
                      "  Project ini file: " +
                      tvconfigs() +
                      "/model/A.ini\n"
                      "  Board ini file: \n    [S]:k=a=b\n    [LONG]:A=3\n");
    EXPECT_THAT(mLog.lines(), IsEmpty());
}

TEST_F(ProjectParserQueriesTest, TvFileIsReadWhole) {
    std::string bytes;
    for (int i = 0; i < 300000; ++i) {
        bytes += static_cast<char>(i * 7);
    }
    const std::string path = write("data.bin", bytes);
    EXPECT_EQ(readFile(path), bytes);
    EXPECT_THAT(debugLines(), ElementsAre("filePath:" + path, "getTvFile fileData size:300000"));
}

TEST_F(ProjectParserQueriesTest, TvFileTakesQuotesOff) {
    const std::string path = write("data.bin", "x");
    EXPECT_EQ(readFile('"' + path + "\" # comment"), "x");
    EXPECT_THAT(debugLines(), ElementsAre("filePath:" + path, "getTvFile fileData size:1"));
    EXPECT_EQ(readFile(path + '"'), "") << "a quote elsewhere is part of the name";
}

TEST_F(ProjectParserQueriesTest, TvFileWithUnmatchedQuoteDoesNotExist) {
    write("data.bin", "x");
    const std::string path = '"' + tvconfigs() + "/data.bin";
    EXPECT_EQ(readFile(path), "");
    EXPECT_THAT(debugLines(),
                ElementsAre("filePath:" + path,
                            MatchesRegex("\\[getTvFile [0-9]+\\] " + path + " don't exist.")));
    EXPECT_EQ(readFile("\""), "");
}

TEST_F(ProjectParserQueriesTest, UnmatchedQuoteNeverNamesAFile) {
    // Even if a file has exactly that name.
    ASSERT_EQ(chdir(tvconfigs().c_str()), 0);
    write("\"odd", "x");
    EXPECT_EQ(readFile("\"odd"), "");
    EXPECT_FALSE(ProjectParser::isFileExist("\"odd"));
}

TEST_F(ProjectParserQueriesTest, TvFileThatIsEmptyOrMissing) {
    const std::string path = write("empty", "");
    EXPECT_EQ(readFile(path), "");
    EXPECT_THAT(debugLines(), ElementsAre("filePath:" + path, "getTvFile fileData size:0"));
    mLog.clear();
    EXPECT_EQ(readFile(path + "x"), "");
    EXPECT_THAT(debugLines(),
                ElementsAre("filePath:" + path + "x",
                            MatchesRegex("\\[getTvFile [0-9]+\\] " + path + "x don't exist.")));
    mLog.clear();
    EXPECT_EQ(readFile("\"\""), "");
    EXPECT_THAT(debugLines(),
                ElementsAre("filePath:", MatchesRegex("\\[getTvFile [0-9]+\\]  don't exist.")));
    mLog.clear();
    EXPECT_EQ(readFile(""), "");
    EXPECT_THAT(mLog.lines(), IsEmpty());
}

TEST_F(ProjectParserQueriesTest, TvFileThatIsEmptyNeedsNoMemory) {
    const std::string path = write("empty", "");
    const auto noPlace = [](size_t size) -> uint8_t* {
        ADD_FAILURE() << "a block of " << size << " bytes";
        return nullptr;
    };
    EXPECT_EQ(readForClient(path, noPlace), 0U);
}

TEST_F(ProjectParserQueriesTest, TvFileForWhichThereIsNoMemoryIsEmpty) {
    if (mlk::testing::kSanitized) {
        GTEST_SKIP() << "a sanitizer ends the process when memory runs out";
    }
    const std::string path = write("sparse", "x");
    ASSERT_EQ(truncate(path.c_str(), off_t{200} << 20), 0);
    std::string text;
    {
        const mlk::testing::AddressLimit limit(rlim_t{50} << 20);
        EXPECT_NO_THROW(text = readFile(path));
    }
    EXPECT_EQ(text, "");
    EXPECT_THAT(errors(), ElementsAre(path + ": cannot be read: no memory for 209715200 bytes"));
}

TEST_F(ProjectParserQueriesTest, TvFileReadsRegularFilesOnly) {
    const std::string fifo = tvconfigs() + "/fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    for (const std::string& path : {tvconfigs(), fifo, std::string("/dev/zero")}) {
        mLog.clear();
        EXPECT_EQ(readFile(path), "");
        EXPECT_THAT(debugLines(), ElementsAre("filePath:" + path, "getTvFile fileData size:0"));
        EXPECT_THAT(errors(), ElementsAre(path + ": cannot be read: not a regular file"));
    }
}

TEST_F(ProjectParserQueriesTest, TvFileHasWhatWasReallyRead) {
    // The kernel gives such a file the size of a page, whatever it holds.
    const std::string path = "/sys/devices/system/cpu/online";
    struct stat about {};
    if (stat(path.c_str(), &about) != 0 || about.st_size < 1000) {
        GTEST_SKIP() << "this kernel shows no such file";
    }
    const std::string text = readFile(path);
    EXPECT_THAT(text, MatchesRegex("[0-9,-]+\n"));
}

TEST_F(ProjectParserQueriesTest, TvFileThatClaimsTooMuchIsEmpty) {
    const std::string path = write("sparse", "x");
    ASSERT_EQ(truncate(path.c_str(), off_t{1} << 40), 0);
    EXPECT_EQ(readFile(path), "");
    EXPECT_THAT(errors(), ElementsAre(path + ": cannot be read: larger than 267386880 bytes"));
}

TEST_F(ProjectParserQueriesTest, TvFileComesInAsManyReadsAsItTakes) {
    const std::string path = write("data.bin", "0123456789");
    ReadHook hook([](int descriptor, void* bytes, size_t size) {
        return ReadHook::read(descriptor, bytes, std::min<size_t>(size, 4));
    });
    EXPECT_EQ(readFile(path), "0123456789");
}

TEST_F(ProjectParserQueriesTest, TvFileReadInPartIsEmpty) {
    const std::string path = write("data.bin", "0123456789");
    // In the middle, and at the end of the file.
    for (const int failing : {1, 2, 4}) {
        mLog.clear();
        ReadHook hook([failing](int descriptor, void* bytes, size_t size) {
            return ReadHook::calls() == failing
                           ? ReadHook::fail(EIO)
                           : ReadHook::read(descriptor, bytes, std::min<size_t>(size, 4));
        });
        EXPECT_EQ(readFile(path), "") << failing;
        EXPECT_THAT(errors(), ElementsAre(path + ": cannot be read: Input/output error"));
    }
}

TEST_F(ProjectParserQueriesTest, TvFileThatBecomesShorterIsWhatIsLeft) {
    const std::string path = write("data.bin", "0123456789");
    ReadHook hook([&](int descriptor, void* bytes, size_t size) {
        if (ReadHook::calls() == 2) {
            EXPECT_EQ(truncate(path.c_str(), 5), 0);
        }
        return ReadHook::read(descriptor, bytes, std::min<size_t>(size, 4));
    });
    EXPECT_EQ(readFile(path), "01234");
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(ProjectParserQueriesTest, TvFileThatBecomesLongerIsReadAgain) {
    const std::string path = write("data.bin", "0123456789");
    ReadHook hook([&](int descriptor, void* bytes, size_t size) {
        if (ReadHook::calls() == 1) {
            write("data.bin", "a longer text");
        }
        return ReadHook::read(descriptor, bytes, size);
    });
    EXPECT_EQ(readFile(path), "a longer text");
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(ProjectParserQueriesTest, TvFileThatGoesOnGrowingIsEmpty) {
    const std::string path = write("data.bin", "0");
    ReadHook hook([&](int descriptor, void* bytes, size_t size) {
        std::ofstream(path, std::ios::app) << "1";
        return ReadHook::read(descriptor, bytes, size);
    });
    EXPECT_EQ(readFile(path), "");
    EXPECT_THAT(errors(), ElementsAre(path + ": cannot be read: it goes on growing"));
}

TEST_F(ProjectParserQueriesTest, TvFileOfTheLimitIsReadAndOneByteMoreIsNot) {
    const std::string path = write("sparse", "x");
    ASSERT_EQ(truncate(path.c_str(), off_t{kMostDeliveredBytes}), 0);
    EXPECT_EQ(ProjectParser::getTvFile(path).size(), kMostDeliveredBytes);
    EXPECT_THAT(errors(), IsEmpty());
    ASSERT_EQ(truncate(path.c_str(), off_t{kMostDeliveredBytes} + 1), 0);
    EXPECT_EQ(ProjectParser::getTvFile(path).size(), 0U);
    EXPECT_THAT(errors(), ElementsAre(path + ": cannot be read: larger than 267386880 bytes"));
}

TEST_F(ProjectParserQueriesTest, FileWithoutASizeIsEmpty) {
    // Files of the kernel, some of them without an end.
    EXPECT_EQ(readFile("/proc/self/pagemap"), "");
    EXPECT_EQ(readFile("/proc/self/status"), "");
}

TEST_F(ProjectParserQueriesTest, PartOfTheProjectListIsNotTheList) {
    const std::string text = "Model_1=/model/A.ini\nModel_2=/model/B.ini\n";
    EXPECT_THAT(listOf(text), ElementsAre("A.ini", "B.ini"));
    std::vector<std::string> list = {"before"};
    ReadHook hook([](int descriptor, void* bytes, size_t size) {
        return ReadHook::calls() == 1
                       ? ReadHook::read(descriptor, bytes, std::min<size_t>(size, 30))
                       : ReadHook::fail(EIO);
    });
    parser().getProjectIniList(list);
    EXPECT_THAT(list, ElementsAre("before"));
    EXPECT_THAT(errors(), ElementsAre(tvconfigs() +
                                      "/sys.ini:1: cannot be read further: Input/output error"));
}

TEST_F(ProjectParserQueriesTest, FileExists) {
    const std::string path = write("data.bin", "x");
    EXPECT_TRUE(ProjectParser::isFileExist(path));
    EXPECT_TRUE(ProjectParser::isFileExist('"' + path + '"'));
    EXPECT_TRUE(ProjectParser::isFileExist(tvconfigs())) << "a directory exists, too";
    EXPECT_THAT(debugLines(),
                ElementsAre("isFileExist filePath:" + path, "isFileExist filePath:" + path,
                            "isFileExist filePath:" + tvconfigs()));
}

TEST_F(ProjectParserQueriesTest, FileDoesNotExist) {
    EXPECT_FALSE(ProjectParser::isFileExist("/nothing/here"));
    EXPECT_FALSE(ProjectParser::isFileExist("\"" + tvconfigs()));
    EXPECT_THAT(debugLines(), ElementsAre("isFileExist filePath:/nothing/here",
                                          "isFileExist /nothing/here don't exist.",
                                          "isFileExist filePath:\"" + tvconfigs(),
                                          "isFileExist \"" + tvconfigs() + " don't exist."));
    mLog.clear();
    EXPECT_FALSE(ProjectParser::isFileExist(""));
    EXPECT_THAT(mLog.lines(), IsEmpty());
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
