// What an observer hears of the files of a set, except the regional ones.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "common/testing/RecordedLines.h"
#include "host/testing/LogCapture.h"
#include "host/testing/ReadHook.h"
#include "host/testing/TempDir.h"
#include "projectconfigs/BoardID.h"
#include "projectconfigs/IniProjectParser.h"
#include "projectconfigs/ProjectFileReader.h"
#include "projectconfigs/ProjectID.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using mlk::testing::LogCapture;
using mlk::testing::ReadHook;
using mlk::testing::TempDir;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace std::string_literals;

class ProjectLinesTest : public ::testing::Test {
  protected:
    using Heard = std::vector<std::string>;

    Heard customer(const std::string& text) {
        mHeard.clear();
        mReader.parse_customer_ini(write(text), mCustomerId, mSystemFile);
        return mHeard.of(mPath);
    }
    Heard system(const std::string& text, int32_t projectId = 1) {
        mHeard.clear();
        mReader.parse_sys_ini(write(text), projectId, mProjectFile, mMaxIdx);
        return mHeard.of(mPath);
    }
    Heard project(const std::string& text) {
        mHeard.clear();
        mReader.parse_project_ini(write(text), mItems);
        return mHeard.of(mPath);
    }
    Heard auxiliary(const std::string& text) {
        mHeard.clear();
        IniProjectParser(&mHeard).update(write(text));
        return mHeard.of(mPath);
    }
    const char* write(const std::string& text) {
        mPath = mDir.write("file.ini", text);
        return mPath.c_str();
    }

    const TempDir mDir;
    LogCapture mLog;
    RecordedLines mHeard;
    ProjectFileReader mReader{"/mnt/tvdata", "/mnt/tvconfigs", "/mnt/impdata", &mHeard};
    std::string mPath;
    std::string mCustomerId;
    std::string mSystemFile;
    std::string mProjectFile;
    uint32_t mMaxIdx = 0;
    ItemStore mItems;
};

TEST_F(ProjectLinesTest, CustomerFile) {
    EXPECT_THAT(customer("CUSTOMER_ID = \"42\"; # ours\n"
                         "\n"
                         "written freely\n"
                         "SYS_INI=/tvconfigs/sys.ini\r\n"
                         "SYS_INI\n"
                         "#SYS_INI=/other.ini\n"
                         "SYS_INI CUSTOMER_ID=7\n"),
                ElementsAre("1 item \"CUSTOMER_ID = \"42\"; # ours\" |CUSTOMER_ID|42",
                            "2 nothing \"\"", "3 nothing \"written freely\"",
                            "4 item \"SYS_INI=/tvconfigs/sys.ini\r\" |SYS_INI|/tvconfigs/sys.ini",
                            "5 problem: no \"=\", line skipped", "5 ignored \"SYS_INI\"",
                            "6 item \"#SYS_INI=/other.ini\" |SYS_INI|/other.ini old",
                            "7 item \"SYS_INI CUSTOMER_ID=7\" |CUSTOMER_ID|7 old"));
    EXPECT_EQ(mCustomerId, "7");
    EXPECT_EQ(mSystemFile, "/other.ini");
    // What is old is a matter of one file.
    EXPECT_THAT(customer("SYS_INI=/tvconfigs/sys.ini\nCUSTOMER_ID="),
                ElementsAre("1 item \"SYS_INI=/tvconfigs/sys.ini\" |SYS_INI|/tvconfigs/sys.ini",
                            "2 item \"CUSTOMER_ID=\" |CUSTOMER_ID|"));
    EXPECT_EQ(mSystemFile, "/mnt/tvconfigs/sys.ini");
}

TEST_F(ProjectLinesTest, SystemFile) {
    EXPECT_THAT(system("# models\n"
                       "Model_1=/tvconfigs/a.ini # old\n"
                       "Model_02 = \"/tvconfigs/b.ini\"\n"
                       "#Model_7=/c.ini\n"
                       "Model_3\n"
                       "Model_x=/d.ini\n"
                       "Model_2=/e.ini\r\n"
                       "my Model_-1=/f.ini\n"),
                ElementsAre("1 nothing \"# models\"",
                            "2 item \"Model_1=/tvconfigs/a.ini # old\" |Model_1|/tvconfigs/a.ini",
                            "3 item \"Model_02 = \"/tvconfigs/b.ini\"\" |Model_2|/tvconfigs/b.ini",
                            "4 item \"#Model_7=/c.ini\" |Model_7|/c.ini",
                            "5 problem: no \"=\", line skipped", "5 ignored \"Model_3\"",
                            "6 item \"Model_x=/d.ini\" |Model_0|/d.ini",
                            "7 item \"Model_2=/e.ini\r\" |Model_2|/e.ini old",
                            "8 item \"my Model_-1=/f.ini\" |Model_-1|/f.ini"));
    EXPECT_EQ(mProjectFile, "/mnt/tvconfigs/a.ini");
}

TEST_F(ProjectLinesTest, ProjectFile) {
    EXPECT_THAT(project("early=1\n"
                        "[PANEL] ; \"x\" # first\r\n"
                        "\r\n"
                        "# remark\n"
                        "\n"
                        "key = \"/tvdata/a b\"; # why\n"
                        " key=2\n"
                        "alone\n"
                        "  # indented\n"
                        "[OPEN\n"
                        "key=a;b=c\n"
                        "[PANEL x]\n"
                        "key=3\n"),
                ElementsAre("1 item \"early=1\" |early|1",
                            "2 section \"[PANEL] ; \"x\" # first\r\" [PANEL]  x||",
                            "3 nothing \"\r\"", "4 nothing \"# remark\"", "5 nothing \"\"",
                            "6 item \"key = \"/tvdata/a b\"; # why\" [PANEL]  x|key|/tvdata/a b",
                            "7 item \" key=2\" [PANEL]  x|key|2 old",
                            "8 item \"alone\" [PANEL]  x|alone|alone",
                            "9 item \"  # indented\" [PANEL]  x||", "10 section \"[OPEN\" [OPEN||",
                            "11 item \"key=a;b=c\" [OPEN|key|ab=c",
                            "12 section \"[PANEL x]\" [PANEL x]||",
                            "13 item \"key=3\" [PANEL x]|key|3"));
    // A board file replaces what the project file has.
    EXPECT_THAT(project("[PANEL x]\nkey=4\nother=5"),
                ElementsAre("1 section \"[PANEL x]\" [PANEL x]||",
                            "2 item \"key=4\" [PANEL x]|key|4 old",
                            "3 item \"other=5\" [PANEL x]|other|5"));
}

TEST_F(ProjectLinesTest, ValuesAreThoseOfTheStore) {
    project("[A]\nquoted = \"a\";\"b\" # c\npath=/tvdata/x\n");
    EXPECT_EQ(mItems.valueOf(mItems.find("[A]", "quoted")), "ab");
    EXPECT_EQ(mItems.valueOf(mItems.find("[A]", "path")), "/mnt/tvdata/x");
    EXPECT_THAT(mHeard.all(), ElementsAre("1 section \"[A]\" [A]||",
                                          "2 item \"quoted = \"a\";\"b\" # c\" [A]|quoted|ab",
                                          "3 item \"path=/tvdata/x\" [A]|path|/tvdata/x"));
}

TEST_F(ProjectLinesTest, AuxiliaryFile) {
    EXPECT_THAT(auxiliary("early=1\n"
                          "[DELAY] # x\r\n"
                          "; remark\n"
                          "# remark\n"
                          "\r\n"
                          "\n"
                          "speaker = 7 # ms\n"
                          "speaker=8\n"
                          "=a==b=c\n"
                          "none=\n"
                          "alone\n"
                          "[DELAY]\n"
                          "speaker=9\n"
                          "quoted=\"1\"\n"),
                ElementsAre("1 item \"early=1\" |early|1", "2 section \"[DELAY] # x\r\" [DELAY] ||",
                            "3 nothing \"; remark\"", "4 nothing \"# remark\"", "5 nothing \"\r\"",
                            "6 nothing \"\"", "7 item \"speaker = 7 # ms\" [DELAY] |speaker|7 ",
                            "8 item \"speaker=8\" [DELAY] |speaker|8 old",
                            "9 item \"=a==b=c\" [DELAY] |a|b", "10 problem: no value, line skipped",
                            "10 ignored \"none=\"", "11 problem: no value, line skipped",
                            "11 ignored \"alone\"", "12 section \"[DELAY]\" [DELAY]||",
                            "13 item \"speaker=9\" [DELAY]|speaker|9",
                            "14 item \"quoted=\"1\"\" [DELAY]|quoted|1"));
}

TEST_F(ProjectLinesTest, LongLinesAndNuls) {
    const std::string list = std::string(256, 'x') + "\n";
    const std::string tooLong = "1 problem: line longer than 255 bytes, its rest is skipped";
    EXPECT_THAT(customer(list + "CUSTOMER_ID=1\0002\n"s),
                ElementsAre(tooLong, "1 nothing \"xxxxxxxx...(255)\" cut",
                            "2 item \"CUSTOMER_ID=1\" |CUSTOMER_ID|1 nul"));
    EXPECT_THAT(system(list + "Model_1=/a\0b\n"s),
                ElementsAre(tooLong, "1 nothing \"xxxxxxxx...(255)\" cut",
                            "2 item \"Model_1=/a\" |Model_1|/a nul"));
    EXPECT_THAT(auxiliary("k=" + list + "l=1\0002\n"s),
                ElementsAre(tooLong, "1 item \"k=xxxxxx...(255)\" |k|xxxxxxxx...(253) cut",
                            "2 item \"l=1\" |l|1 nul"));
    EXPECT_THAT(project("k=" + std::string(1021, 'x') + "\nl=" + std::string(1022, 'x') +
                        "\nm=1\0002\n"s),
                ElementsAre("1 item \"k=xxxxxx...(1023)\" |k|xxxxxxxx...(1021)",
                            "2 problem: line longer than 1023 bytes, its rest is skipped",
                            "2 item \"l=xxxxxx...(1023)\" |l|xxxxxxxx...(1021) cut",
                            "3 item \"m=1\" |m|1 nul"));
}

/** Collects the items that it hears of: for each name the first and the last value. */
class CollectedItems : public ReadObserver {
  public:
    using Name = std::pair<std::string, std::string>;  // section and key

    void onLine(const ReadLine& line) override {
        if (line.use == LineUse::ITEM) {
            const Name name(line.section, line.key);
            EXPECT_EQ(line.isNew, mFirst.emplace(name, line.value).second) << line.text;
            mLast[name] = line.value;
        }
    }
    void onProblem(const ReadProblem&) override {}

    const std::map<Name, std::string>& first() const { return mFirst; }
    const std::map<Name, std::string>& last() const { return mLast; }

  private:
    std::map<Name, std::string> mFirst;
    std::map<Name, std::string> mLast;
};

// What is told suffices to know what the reader has.
TEST_F(ProjectLinesTest, ToldItemsAreThoseOfTheReader) {
    const std::string symbols = "ab[]==;\"# \r\n\n"s + '\0';
    std::mt19937 random(16);
    size_t items = 0;
    for (int round = 0; round < 300; ++round) {
        std::string text;
        for (size_t size = random() % 200; size > 0; --size) {
            text += symbols[random() % symbols.size()];
        }
        const char* const path = write(text);
        CollectedItems project;
        ItemStore store;
        ProjectFileReader("", "", "", &project).parse_project_ini(path, store);
        std::map<CollectedItems::Name, std::string> stored;
        for (const ItemStore::Item item : store.inOrder()) {
            stored[{std::string(store.sectionOf(item)), std::string(store.keyOf(item))}] =
                    store.valueOf(item);
        }
        EXPECT_EQ(project.last(), stored) << text;

        CollectedItems auxiliary;
        IniProjectParser parser(&auxiliary);
        parser.update(path);
        for (const auto& [name, value] : auxiliary.first()) {
            EXPECT_EQ(parser.getInfo("file.ini", {name.first, name.second}), value) << text;
        }
        items += stored.size() + auxiliary.first().size();
    }
    EXPECT_GT(items, 1000U) << "the texts have items";
}

// Each reader of a file of lines, which gets the path.
template <typename Read>
void forEachReader(ProjectFileReader& reader, ReadObserver& heard, const Read& read) {
    std::string text;
    uint32_t number = 0;
    ItemStore items;
    read([&](const char* path) { reader.parse_customer_ini(path, text, text); });
    read([&](const char* path) { reader.parse_sys_ini(path, 1, text, number); });
    read([&](const char* path) { reader.parse_project_ini(path, items); });
    read([&](const char* path) { IniProjectParser(&heard).update(path); });
}

TEST_F(ProjectLinesTest, WhatCannotBeReadIsAProblemUnlessItIsMissing) {
    const std::string huge = mDir.write("huge", "");
    ASSERT_EQ(truncate(huge.c_str(), off_t{1} << 32), 0);  // sparse
    forEachReader(mReader, mHeard, [&](const auto& read) {
        mHeard.clear();
        read(mDir.path("missing").c_str());
        EXPECT_THAT(mHeard.all(), IsEmpty());
        read(mDir.path().c_str());
        EXPECT_THAT(mHeard.of(mDir.path()),
                    ElementsAre("0 problem: cannot be read: not a regular file"));
        read(huge.c_str());
        ASSERT_EQ(mHeard.of(huge).size(), 1U);
        EXPECT_THAT(mHeard.of(huge).front(),
                    ::testing::StartsWith("0 problem: cannot be read: larger than "));
    });
}

TEST_F(ProjectLinesTest, ReadErrorComesAfterTheLinesBeforeIt) {
    const std::string path = mDir.write("file.ini", "#1\n#2\n#3\n");
    forEachReader(mReader, mHeard, [&](const auto& read) {
        mHeard.clear();
        const ReadHook hook([](int descriptor, void* bytes, size_t size) {
            return ReadHook::calls() == 1
                           ? ReadHook::read(descriptor, bytes, std::min<size_t>(size, 7))
                           : ReadHook::fail(EIO);
        });
        read(path.c_str());
        EXPECT_THAT(mHeard.of(path),
                    ElementsAre("1 nothing \"#1\"", "2 nothing \"#2\"",
                                "2 problem: cannot be read further: Input/output error"));
    });
}

TEST_F(ProjectLinesTest, BoardIdIsReadUpToItsLine) {
    const std::string path = mDir.write("board_id.bin", "x\nBOARD_ID\nMY_BOARD_ID= a #\nmore\n");
    EXPECT_EQ(BoardID(mDir.path(), &mHeard).Get(), " a #");
    EXPECT_THAT(mHeard.of(path), ElementsAre("1 nothing \"x\"", "2 problem: no \"=\", line skipped",
                                             "2 ignored \"BOARD_ID\"",
                                             "3 item \"MY_BOARD_ID= a #\" |BOARD_ID| a #"));
    mHeard.clear();
    BoardID(mDir.path("missing"), &mHeard);
    EXPECT_THAT(mHeard.all(), IsEmpty());
}

/** Reads "project_id.bin" without a right to write. */
class ProjectIdReadTest : public ProjectLinesTest {
  protected:
    std::optional<uint32_t> index(const std::string& text) {
        mHeard.clear();
        mPath = mDir.write("project_id.bin", text);
        const std::optional<uint32_t> index = ProjectID::read(mDir.path(), &mHeard);
        EXPECT_EQ(index, ProjectID::read(mDir.path())) << "the observer changes nothing";
        EXPECT_EQ(mDir.read("project_id.bin"), text);
        EXPECT_EQ(index, ProjectID(mDir.path(), 99).Get()) << "there is one reader";
        return index;
    }
};

TEST_F(ProjectIdReadTest, TellsTheLineOfTheIndex) {
    EXPECT_EQ(index("PROJECT_ID=6\n"), 6U);
    EXPECT_THAT(mHeard.of(mPath), ElementsAre("1 item \"PROJECT_ID=6\" |PROJECT_ID|6"));
    EXPECT_EQ(index("\n# x=1\nmy PROJECT_ID = 07 # a\nPROJECT_ID=8"), 7U);
    EXPECT_THAT(mHeard.of(mPath),
                ElementsAre("3 item \"my PROJECT_ID = 07 # a\" |PROJECT_ID| 07 # a"));
    EXPECT_EQ(index("PROJECT_ID"), 0U);
    EXPECT_THAT(mHeard.of(mPath), ElementsAre("1 ignored \"PROJECT_ID\""));
    EXPECT_EQ(index("PROJECTID=1\n"), 0U);
    EXPECT_THAT(mHeard.all(), IsEmpty());
    EXPECT_EQ(index(""), 0U);
    EXPECT_THAT(mHeard.all(), IsEmpty());
}

TEST_F(ProjectIdReadTest, FirstEqualsMayStandInALaterLine) {
    EXPECT_EQ(index("PROJECT_ID\nb=3\n"), 3U);
    EXPECT_THAT(mHeard.of(mPath), ElementsAre("1 item \"PROJECT_ID\" |PROJECT_ID|3"));
}

TEST_F(ProjectIdReadTest, CountsTheLinesOfEarlierChunks) {
    // A chunk has 256 bytes. A NUL ends what is searched of it, but not the count of lines.
    std::string text(600, '\n');
    text += "PROJECT_ID=5\n";
    EXPECT_EQ(index(text), 5U);
    EXPECT_THAT(mHeard.of(mPath), ElementsAre("601 item \"PROJECT_ID=5\" |PROJECT_ID|5"));
    text[0] = '\0';
    EXPECT_EQ(index(text), 5U);
    EXPECT_THAT(mHeard.of(mPath), ElementsAre("600 item \"PROJECT_ID=5\" |PROJECT_ID|5"));
}

TEST_F(ProjectIdReadTest, CreatesNothing) {
    EXPECT_EQ(ProjectID::read(mDir.path(), &mHeard), std::nullopt);
    EXPECT_EQ(access(mDir.path("project_id.bin").c_str(), F_OK), -1);
    EXPECT_EQ(ProjectID::read(mDir.path("none"), &mHeard), std::nullopt);
    EXPECT_EQ(access(mDir.path("none").c_str(), F_OK), -1);
    EXPECT_THAT(mHeard.all(), IsEmpty());
    EXPECT_THAT(mLog.lines(), IsEmpty());
}

TEST_F(ProjectIdReadTest, WhatCannotBeReadIsAProblem) {
    ASSERT_EQ(mkdir(mDir.path("project_id.bin").c_str(), 0700), 0);
    EXPECT_EQ(ProjectID::read(mDir.path(), &mHeard), std::nullopt);
    EXPECT_THAT(mHeard.of(mDir.path("project_id.bin")),
                ElementsAre("0 problem: cannot be read: not a regular file"));
    ASSERT_EQ(rmdir(mDir.path("project_id.bin").c_str()), 0);

    EXPECT_EQ(index(std::string(70'000, 'x')), 0U);
    EXPECT_THAT(mHeard.all(), ElementsAre("0 problem: no index in the first 65536 bytes"));

    mHeard.clear();
    mDir.write("project_id.bin", "PROJECT_ID=1\n");
    const ReadHook hook([](int, void*, size_t) { return ReadHook::fail(EIO); });
    EXPECT_EQ(ProjectID::read(mDir.path(), &mHeard), std::nullopt);
    EXPECT_THAT(mHeard.all(), ElementsAre("0 problem: cannot be read: Input/output error"));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
