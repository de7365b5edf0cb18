#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <future>
#include <string>

#include "host/testing/FileCalls.h"
#include "host/testing/OtherUser.h"
#include "host/testing/SmallDisk.h"
#include "regional/TvSysMapCfgHolder.h"
#include "regional/tests/TvSysMapFiles.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::mlk::testing::asOtherUser;
using ::mlk::testing::FileCall;
using ::mlk::testing::FileCallFate;
using ::mlk::testing::FileCalls;
using ::mlk::testing::isKilledAt;
using ::mlk::testing::SmallDisk;
using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr _tv_country kGermany{14};
constexpr _tv_country kUsa{44};

// While it lives, files can be created but nothing can be written to them.
class FullDisk {
  public:
    FullDisk() : mFormerAction(signal(SIGXFSZ, SIG_IGN)) {
        EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &mFormer), 0);
        rlimit none = mFormer;
        none.rlim_cur = 0;
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &none), 0);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &mFormer);
        static_cast<void>(signal(SIGXFSZ, mFormerAction));
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

  private:
    rlimit mFormer{};
    sighandler_t mFormerAction;
};

class CountryIdTest : public ::testing::Test, protected TvSysMapFiles {
  protected:
    CountryIdTest() : mFormerMask(umask(022)) {}
    ~CountryIdTest() override { umask(mFormerMask); }
    static mode_t modeOf(const std::string& path) {
        struct stat about {};
        EXPECT_EQ(stat(path.c_str(), &about), 0) << path;
        return about.st_mode & 07777U;
    }
    _tv_country parse(const std::string& text) {
        writeCountryId(text);
        mHolder.parseCountryId();
        return mHolder.currentCountry();
    }
    // Replaces the folder by something in which no file can be created.
    void blockFolder() const { set().dir().write("tvdata/tvsysmap", "a file"); }

    const mode_t mFormerMask;
    TvSysMapCfgHolder mHolder = processHolder();
};

TEST_F(CountryIdTest, SavesACountry) {
    EXPECT_EQ(processHolder().getCountryBinFolderPath(), folder());
    EXPECT_TRUE(mHolder.saveCountryId(kGermany));
    EXPECT_EQ(countryId(), "COUNTRY_ID=14\n");
    EXPECT_EQ(modeOf(folder()), 0700U);
    EXPECT_EQ(modeOf(file()), 0644U);
    EXPECT_THAT(debugLines(), Contains("[saveCountryId:133] id=14"));
    EXPECT_THAT(errors(), IsEmpty());
    EXPECT_NE(access((file() + ".new").c_str(), F_OK), 0) << "nothing is left lying about";
}

// Or a power cut could take the new folder with the file in it.
TEST_F(CountryIdTest, AFolderThatIsMadeIsSyncedBeforeItsFile) {
    {
        const FileCalls calls;
        EXPECT_TRUE(mHolder.saveCountryId(kGermany));
        EXPECT_EQ(calls.calls().at(0), FileCall::FSYNC);
    }
    const FileCalls calls;
    EXPECT_TRUE(mHolder.saveCountryId(kUsa));
    EXPECT_EQ(calls.calls().at(0), FileCall::PWRITE) << "the folder is there already";
}

// The second one must not write until the first has cut the file to its own length.
TEST_F(CountryIdTest, TwoHoldersSaveOneAfterTheOther) {
    writeCountryId("COUNTRY_ID=100\n");
    TvSysMapCfgHolder other = processHolder();
    std::future<bool> second;
    const FileCalls calls([&](FileCall call, size_t) {
        if (call == FileCall::FTRUNCATE && !second.valid()) {
            second = std::async(std::launch::async,
                                [&] { return other.saveCountryId(_tv_country{185}); });
            // Nothing tells that it waits.
            EXPECT_EQ(second.wait_for(std::chrono::milliseconds(200)), std::future_status::timeout);
        }
        return FileCallFate{};
    });
    EXPECT_TRUE(mHolder.saveCountryId(_tv_country{0}));
    ASSERT_TRUE(second.valid());
    EXPECT_TRUE(second.get());
    EXPECT_EQ(countryId(), "COUNTRY_ID=185\n");
}

TEST_F(CountryIdTest, ASavedCountryReplacesTheFormerOneWhole) {
    writeCountryId("COUNTRY_ID=185\nmore\n");
    EXPECT_TRUE(mHolder.saveCountryId(_tv_country{0}));
    EXPECT_EQ(countryId(), "COUNTRY_ID=0\n");
    EXPECT_TRUE(mHolder.saveCountryId(_tv_country{-2})) << "only -1 means no country";
    EXPECT_EQ(countryId(), "COUNTRY_ID=-2\n");
}

TEST_F(CountryIdTest, NoCountryIsNotSaved) {
    EXPECT_FALSE(mHolder.saveCountryId(kNoCountry));
    EXPECT_THAT(debugLines(), ElementsAre("[saveCountryId:133] id=-1"));
    EXPECT_NE(access(folder().c_str(), F_OK), 0);
    writeCountryId("COUNTRY_ID=14\n");
    EXPECT_FALSE(mHolder.saveCountryId(kNoCountry));
    EXPECT_EQ(countryId(), "COUNTRY_ID=14\n");
}

TEST_F(CountryIdTest, AFolderThatCannotBeMade) {
    ASSERT_EQ(rmdir(set().tvdata().c_str()), 0);
    EXPECT_FALSE(mHolder.saveCountryId(kUsa));
    EXPECT_THAT(errors(), ElementsAre("[saveCountryId:142] create " + folder() + " failed!",
                                      "[saveCountryId:153] Open " + file() + " failed!"));
    log().clear();
    writeBoth();
    mHolder.getConfigs(set().tvconfigs() + "/tvsys.xml", kNoCountry);
    EXPECT_THAT(errors(), ElementsAre("[parseCountryId:484] create " + folder() + " failed!",
                                      "[parseCountryId:524] Open " + file() + " failed!",
                                      "[getConfigs] chkchk mCountryIdx=-1"));
}

TEST_F(CountryIdTest, AFileThatCannotBeCreated) {
    blockFolder();
    EXPECT_FALSE(mHolder.saveCountryId(kUsa));
    EXPECT_THAT(errors(), ElementsAre("[saveCountryId:153] Open " + file() + " failed!"));
}

// As when another process has just made it: it is not there, and cannot be made.
TEST_F(CountryIdTest, AFolderThatIsThereAfterAllIsNotComplainedAbout) {
    ASSERT_EQ(symlink("/no/such/folder", folder().c_str()), 0);
    EXPECT_FALSE(mHolder.saveCountryId(kUsa));
    EXPECT_THAT(errors(), ElementsAre("[saveCountryId:153] Open " + file() + " failed!"));
}

TEST_F(CountryIdTest, AFolderInPlaceOfTheFile) {
    set().dir().mkdir("tvdata/tvsysmap/country_id.bin");
    EXPECT_FALSE(mHolder.saveCountryId(kUsa));
    EXPECT_EQ(errors().back(), "[saveCountryId:153] Open " + file() + " failed!");
    EXPECT_NE(access((file() + ".new").c_str(), F_OK), 0);
    mHolder.parseCountryId();
    EXPECT_EQ(errors().back(), "[parseCountryId:505] Open " + file() + " failed!");
    EXPECT_EQ(mHolder.currentCountry(), kNoCountry);
}

TEST_F(CountryIdTest, AFileThatCannotTakeMoreKeepsTheOldCountry) {
    writeCountryId("COUNTRY_ID=14\n");
    {
        const FullDisk full;
        EXPECT_FALSE(mHolder.saveCountryId(kUsa));
    }
    EXPECT_EQ(errors().back(), file() + ": cannot be written: File too large");
    EXPECT_EQ(countryId(), "COUNTRY_ID=14\n");
    EXPECT_NE(access((file() + ".new").c_str(), F_OK), 0);
    EXPECT_TRUE(mHolder.saveCountryId(kUsa));
    EXPECT_EQ(countryId(), "COUNTRY_ID=44\n");
}

TEST_F(CountryIdTest, AFullDiskIsNoObstacle) {
    const SmallDisk disk;
    if (!disk.isMounted()) {
        GTEST_SKIP() << disk.problem();
    }
    disk.dir().write("country_id.bin", "COUNTRY_ID=9\n");
    ASSERT_EQ(symlink(disk.dir().path().c_str(), folder().c_str()), 0);
    disk.fill();
    for (const _tv_country country : {_tv_country{185}, kGermany, kUsa, _tv_country{7}}) {
        EXPECT_TRUE(mHolder.saveCountryId(country));
        mHolder.parseCountryId();
        EXPECT_EQ(mHolder.currentCountry(), country);
    }
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(CountryIdTest, AFileIsSavedInAFolderThatMayNotBeWritten) {
    writeCountryId("COUNTRY_ID=14\n");
    ASSERT_EQ(chmod(file().c_str(), 0666), 0);
    ASSERT_EQ(chmod(folder().c_str(), 0555), 0);
    ASSERT_EQ(chmod(set().tvdata().c_str(), 0755), 0);
    EXPECT_TRUE(asOtherUser(set().dir().path(), [&] { return mHolder.saveCountryId(kUsa); }));
    EXPECT_EQ(countryId(), "COUNTRY_ID=44\n");
    EXPECT_EQ(modeOf(file()), 0666U);
    chmod(folder().c_str(), 0700);
}

TEST_F(CountryIdTest, AWriteProtectedFileIsNotReplaced) {
    writeCountryId("COUNTRY_ID=14\n");
    ASSERT_EQ(chmod(file().c_str(), 0444), 0);
    ASSERT_EQ(chmod(folder().c_str(), 0777), 0);
    EXPECT_TRUE(asOtherUser(set().dir().path(), [&] {
        return !mHolder.saveCountryId(kUsa) &&
               errors() == std::vector{"[saveCountryId:153] Open " + file() + " failed!"};
    }));
    EXPECT_EQ(countryId(), "COUNTRY_ID=14\n");
}

TEST_F(CountryIdTest, ASavedFileKeepsWhatItIs) {
    writeCountryId("COUNTRY_ID=14\n");
    ASSERT_EQ(rename(file().c_str(), (folder() + "/target").c_str()), 0);
    ASSERT_EQ(symlink("target", file().c_str()), 0);
    ASSERT_EQ(chmod(file().c_str(), 0660), 0);
    umask(077);
    EXPECT_TRUE(mHolder.saveCountryId(kUsa));
    EXPECT_EQ(set().dir().read("tvdata/tvsysmap/target"), "COUNTRY_ID=44\n");
    EXPECT_EQ(modeOf(folder() + "/target"), 0660U);
}

TEST_F(CountryIdTest, ANewFileHasItsModeWhateverTheUmask) {
    umask(077);
    EXPECT_TRUE(mHolder.saveCountryId(kUsa));
    EXPECT_EQ(modeOf(file()), 0644U);
    EXPECT_EQ(modeOf(folder()), 0700U);
}

// The next start finds the old country or the new one.
TEST_F(CountryIdTest, AKillAtEachCallLeavesTheOldCountryOrTheNew) {
    struct Row {
        std::string before;
        _tv_country former;
        _tv_country country;
    };
    const Row rows[] = {{"COUNTRY_ID=14\n", kGermany, kUsa},
                        {"COUNTRY_ID=9\n", _tv_country{9}, _tv_country{185}},
                        {"COUNTRY_ID=185\n", _tv_country{185}, _tv_country{9}},
                        {"# from the factory\nCOUNTRY_ID=185\n", _tv_country{185}, kUsa},
                        {"none", kNoCountry, kUsa}};
    for (const Row& row : rows) {
        size_t number = 0;
        for (bool killed = true; killed; ++number) {
            unlink(file().c_str());
            if (row.before != "none") {
                writeCountryId(row.before);
            }
            killed = isKilledAt(number, [&] { mHolder.saveCountryId(row.country); });
            mHolder.parseCountryId();
            EXPECT_THAT(mHolder.currentCountry(), AnyOf(row.former, row.country)) << number;
            EXPECT_TRUE(killed || mHolder.currentCountry() == row.country);
        }
        EXPECT_GT(number, 2U);
    }
}

TEST_F(CountryIdTest, AKilledFirstStartSavesTheFirstCountryAtTheNext) {
    const std::string xml = writeBoth();
    size_t number = 0;
    for (bool killed = true; killed; ++number) {
        unlink(file().c_str());
        killed = isKilledAt(number, [&] { processHolder().getConfigs(xml, kNoCountry); });
        EXPECT_THAT(textOf(processHolder().getConfigs(xml, kNoCountry)), HasSubstr("eu.config"))
                << number;
        EXPECT_EQ(countryId(), "COUNTRY_ID=14\n") << number;
    }
    EXPECT_GT(number, 2U);
}

TEST_F(CountryIdTest, AFileThatCannotBeReadGivesNothing) {
    set().dir().mkdir("tvdata/tvsysmap");
    ASSERT_EQ(symlink("/proc/self/mem", file().c_str()), 0);
    mHolder.parseCountryId();
    EXPECT_EQ(mHolder.currentCountry(), kNoCountry);
    EXPECT_THAT(errors(), ElementsAre(file() + ":0: cannot be read further: Input/output error"));
}

TEST_F(CountryIdTest, AFirstStartOnAFullDiskStillHasACountry) {
    const std::string xml = writeBoth();
    const FullDisk full;
    EXPECT_THAT(textOf(mHolder.getConfigs(xml, kNoCountry)), HasSubstr("eu.config"));
    EXPECT_NE(access(file().c_str(), F_OK), 0);
}

TEST_F(CountryIdTest, WhatAnInterruptedSaveLeftIsNoObstacle) {
    writeCountryId("COUNTRY_ID=14\n");
    set().dir().write("tvdata/tvsysmap/country_id.bin.new", "COUNTRY_ID=1234567890\n");
    mHolder.parseCountryId();
    EXPECT_EQ(mHolder.currentCountry(), kGermany);
    EXPECT_TRUE(mHolder.saveCountryId(kUsa));
    EXPECT_EQ(countryId(), "COUNTRY_ID=44\n");
}

TEST_F(CountryIdTest, TheFirstStartSavesTheMapsFirstCountry) {
    const std::string xml = writeBoth();
    EXPECT_EQ(textOf(mHolder.getConfigs(xml, kNoCountry)),
              "[A]:k=" + set().tvdata() + "/x;[LiveTV]:Hbbtv=true;[LiveTV]:TvConfig=" +
                      set().tvconfigs() + "/tv/eu.config;");
    EXPECT_EQ(countryId(), "COUNTRY_ID=14\n");
    EXPECT_EQ(modeOf(folder()), 0700U);
    EXPECT_EQ(modeOf(file()), 0644U);
    EXPECT_THAT(debugLines(), Contains("[parseCountryId:500] country_id.bin=" + file() +
                                       " (isRead=0, isWrite=1)"));
    EXPECT_EQ(debugLines().back(), "[parseCountryId:538] mCountryIdx=14");
    EXPECT_THAT(errors(), IsEmpty());
}

// The first start saves whatever stands first, so that later starts do not choose again.
TEST_F(CountryIdTest, TheFirstStartAlsoSavesThatTheFirstCountryIsNone) {
    const std::string xml = writeBoth();
    writeCountries(country("DEFAULT", "", "") + country("USA", "ATSC", ""));
    EXPECT_THAT(mHolder.getConfigs(xml, kNoCountry), IsEmpty());
    EXPECT_EQ(countryId(), "COUNTRY_ID=-1\n");
}

TEST_F(CountryIdTest, LaterStartsReadTheSavedCountry) {
    const std::string xml = writeBoth();
    writeCountryId("COUNTRY_ID=44\n");
    EXPECT_THAT(textOf(mHolder.getConfigs(xml, kNoCountry)), HasSubstr("na.config"));
    EXPECT_THAT(debugLines(), Contains("[parseCountryId:500] country_id.bin=" + file() +
                                       " (isRead=1, isWrite=0)"));
    EXPECT_EQ(debugLines().back(), "[parseCountryId:538] mCountryIdx=44");
    EXPECT_EQ(countryId(), "COUNTRY_ID=44\n");
}

TEST_F(CountryIdTest, AFileWithoutCountryGivesNothing) {
    const std::string xml = writeBoth();
    for (const char* const text : {"COUNTRY_ID=-1\n", "nothing\n", "", "COUNTRY_ID\n"}) {
        writeCountryId(text);
        TvSysMapCfgHolder holder = processHolder();
        log().clear();
        EXPECT_THAT(holder.getConfigs(xml, kNoCountry), IsEmpty()) << text;
        EXPECT_EQ(errors().back(), "[getConfigs] chkchk mCountryIdx=-1") << text;
        EXPECT_EQ(countryId(), text) << "a file that is there is left alone";
    }
}

TEST_F(CountryIdTest, TheFirstLineWithTheKeywordCounts) {
    EXPECT_EQ(parse("x\n\n# COUNTRY_ID = 44 or so\nCOUNTRY_ID=14\n"), kUsa);
    EXPECT_EQ(parse("a=7 COUNTRY_ID=14\n"), _tv_country{7}) << "the text after the first =";
    EXPECT_EQ(parse("COUNTRY_ID=14"), kGermany);
    EXPECT_EQ(parse("COUNTRY_ID=x\n"), _tv_country{0});
    EXPECT_EQ(parse("COUNTRY_ID=99999999999999999999\n"), kNoCountry) << "as any number too large";
    EXPECT_EQ(parse("COUNTRY_ID\nCOUNTRY_ID=14\n"), kNoCountry);
    EXPECT_EQ(parse(std::string(300, 'x') + "COUNTRY_ID=14\nCOUNTRY_ID=44\n"), kUsa)
            << "a line is seen up to its 255th byte";
}

TEST_F(CountryIdTest, AFileHas64KiBAtMost) {
    const std::string line = "COUNTRY_ID=14\n";
    const std::string fits = std::string(65536 - line.size(), '\n') + line;
    EXPECT_EQ(parse(fits), kGermany);
    EXPECT_THAT(errors(), IsEmpty());
    EXPECT_EQ(parse('\n' + fits), kNoCountry);
    EXPECT_THAT(errors(), Contains(file() + ": cannot be read: larger than 65536 bytes"));
}

TEST_F(CountryIdTest, WithoutAMapNothingIsSaved) {
    mHolder.parseCountryId();
    EXPECT_EQ(mHolder.currentCountry(), kNoCountry);
    EXPECT_NE(access(file().c_str(), F_OK), 0) << "a later start must find no country";
    EXPECT_THAT(errors(), IsEmpty());
    const std::string xml = writeSystems("");
    writeCountries("<X/>");
    EXPECT_THAT(mHolder.getConfigs(xml, kNoCountry), IsEmpty());
    EXPECT_NE(access(file().c_str(), F_OK), 0);
}

TEST_F(CountryIdTest, AFileThatIsGoneLeavesNoCountry) {
    EXPECT_EQ(parse("COUNTRY_ID=14\n"), kGermany);
    ASSERT_EQ(unlink(file().c_str()), 0);
    mHolder.parseCountryId();
    EXPECT_EQ(mHolder.currentCountry(), kNoCountry);
}

TEST_F(CountryIdTest, AFifoInPlaceOfTheFileHoldsNobodyUp) {
    set().dir().mkdir("tvdata/tvsysmap");
    ASSERT_EQ(mkfifo(file().c_str(), 0600), 0);
    mHolder.parseCountryId();
    EXPECT_EQ(errors().back(), "[parseCountryId:505] Open " + file() + " failed!");
    EXPECT_FALSE(mHolder.saveCountryId(kUsa));
    EXPECT_EQ(errors().back(), "[saveCountryId:153] Open " + file() + " failed!");
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
