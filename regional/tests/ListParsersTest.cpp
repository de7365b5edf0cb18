#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "host/testing/ReadHook.h"
#include "host/testing/TempDir.h"
#include "regional/CountryListParser.h"
#include "regional/LanguageListParser.h"
#include "regional/tests/RegionalFiles.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using mlk::testing::ReadHook;
using mlk::testing::TempDir;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ListParsersTest : public ::testing::Test, protected RegionalFiles {
  protected:
    static std::vector<int32_t> countriesIn(const std::string& path) {
        const auto countries = CountryListParser::GetInstance().getCountryList(path);
        return {countries.begin(), countries.end()};
    }
    std::vector<int32_t> countriesOf(const std::string& text) const {
        return countriesIn(mDir.write("list.txt", text));
    }
    static std::vector<std::string> languagesIn(const std::string& path) {
        std::vector<std::string> languages;
        LanguageListParser::GetInstance().getLanguageList(path, languages);
        return languages;
    }
    std::vector<std::string> languagesOf(const std::string& text) const {
        return languagesIn(mDir.write("list.txt", text));
    }

    TempDir mDir;
};

TEST_F(ListParsersTest, ThereIsOneOfEach) {
    EXPECT_EQ(&CountryListParser::GetInstance(), &CountryListParser::GetInstance());
    EXPECT_EQ(&LanguageListParser::GetInstance(), &LanguageListParser::GetInstance());
}

TEST_F(ListParsersTest, CountriesComeByTheirValuesAndAreCounted) {
    EXPECT_THAT(countriesOf("GERMANY\n\nUSA,extra\n"), ElementsAre(14, 44));
    EXPECT_THAT(debugLines(),
                ElementsAre("filePath:" + mDir.path("list.txt"), "Totol country count:2"));
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(ListParsersTest, OrderAndRepetitionsStay) {
    EXPECT_THAT(countriesOf("USA\nDEFAULT\nUSA\nPAPUA_NEW_GUINEA"), ElementsAre(44, -1, 44, 185));
}

TEST_F(ListParsersTest, AnUnknownCountryCountsAsTheFirst) {
    EXPECT_THAT(countriesOf("Germany\nGERMANY \nGERMANY\r\n GERMANY\nGERMANY\n"),
                ElementsAre(0, 0, 0, 0, 14));
    EXPECT_THAT(errors(), IsEmpty());
    std::string name;
    ASSERT_TRUE(CountryListParser::GetInstance().getCountryName(_tv_country{0}, name));
    EXPECT_EQ(name, " GERMANY") << "a blank sorts before ANDORRA";
}

TEST_F(ListParsersTest, AnUnknownNameThatSortsAfterItDoesNotRenameTheFirst) {
    EXPECT_THAT(countriesOf("Germany\nZEBRA\n"), ElementsAre(0, 0));
    std::string name;
    ASSERT_TRUE(CountryListParser::GetInstance().getCountryName(_tv_country{0}, name));
    EXPECT_EQ(name, "ANDORRA");
}

TEST_F(ListParsersTest, TheSameUnknownNamesAreTakenInOnce) {
    for (int reading = 0; reading < 100; ++reading) {
        EXPECT_THAT(countriesOf("Germany\nUSA\nNowhere\nGermany\n"), ElementsAre(0, 44, 0, 0));
        EXPECT_EQ(RegionalPeer::addedNames(), 2U);
    }
}

TEST_F(ListParsersTest, CountryNames) {
    CountryListParser& parser = CountryListParser::GetInstance();
    std::string name;
    EXPECT_TRUE(parser.getCountryName(kNoCountry, name));
    EXPECT_EQ(name, "DEFAULT");
    EXPECT_TRUE(parser.getCountryName(_tv_country{147}, name));
    EXPECT_EQ(name, "UNITED_ARAB_EMIRATES");
    EXPECT_TRUE(parser.getCountryName(_tv_country{56}, name));
    EXPECT_EQ(name, "ARE");
    for (const int32_t value : {161, 186, -2, 0x7fffffff}) {
        EXPECT_FALSE(parser.getCountryName(_tv_country{value}, name)) << value;
        EXPECT_EQ(name, "ARE");
    }
}

TEST_F(ListParsersTest, LanguagesComeAsTheyStand) {
    EXPECT_THAT(languagesOf("eng,English,more\n\n ger \ndeu\r\n,fre,French\neng\n"),
                ElementsAre("eng", " ger ", "deu\r", "fre", "eng"));
    EXPECT_THAT(debugLines(), ElementsAre("filePath:" + mDir.path("list.txt")));
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(ListParsersTest, LanguagesAreAppended) {
    std::vector<std::string> languages = {"first"};
    LanguageListParser::GetInstance().getLanguageList(mDir.write("list.txt", "eng\n"), languages);
    EXPECT_THAT(languages, ElementsAre("first", "eng"));
}

TEST_F(ListParsersTest, ALineOfNothingButCommasIsSkipped) {
    EXPECT_THAT(countriesOf("USA\n,,\n,GERMANY\n"), ElementsAre(44, 14));
    EXPECT_THAT(errors(),
                ElementsAre(mDir.path("list.txt") + ":2: nothing but commas, line skipped"));
}

TEST_F(ListParsersTest, ALongLineIsCutAndDoesNotStopTheReading) {
    EXPECT_THAT(languagesOf(std::string(300, 'x') + ",y\n" + std::string(255, 'z') + "\neng\n"),
                ElementsAre(std::string(255, 'x'), std::string(255, 'z'), "eng"));
    EXPECT_THAT(errors(), ElementsAre(mDir.path("list.txt") +
                                      ":1: line longer than 255 bytes, its rest is skipped"));
}

TEST_F(ListParsersTest, ANulByteEndsItsLine) {
    EXPECT_THAT(languagesOf(std::string("eng\0x\n\0\nger\n", 12)), ElementsAre("eng", "ger"));
}

TEST_F(ListParsersTest, AnEmptyPathIsAnEmptyListWithoutAWord) {
    EXPECT_THAT(countriesIn(""), IsEmpty());
    EXPECT_THAT(languagesIn(""), IsEmpty());
    EXPECT_THAT(log().lines(), IsEmpty());
}

TEST_F(ListParsersTest, AMissingFileIsAnEmptyList) {
    const std::string path = mDir.path("missing.txt");
    EXPECT_THAT(countriesIn(path), IsEmpty());
    EXPECT_THAT(languagesIn(path), IsEmpty());
    EXPECT_THAT(debugLines(), ElementsAre("filePath:" + path, "filePath:" + path));
    EXPECT_THAT(errors(), ElementsAre(path + " don't exist.", path + " don't exist."));
}

TEST_F(ListParsersTest, QuotesAroundAPathAreTakenOff) {
    const std::string path = mDir.write("list.txt", "USA\n");
    EXPECT_THAT(countriesIn('"' + path + '"'), ElementsAre(44));
    EXPECT_THAT(countriesIn('"' + path + "\" # remark"), ElementsAre(44));
    EXPECT_THAT(languagesIn('"' + path + '"'), ElementsAre("USA"));
    EXPECT_EQ(debugLines()[0], "filePath:" + path);
}

TEST_F(ListParsersTest, AQuoteElsewhereBelongsToThePath) {
    const std::string path = mDir.write("a\"b\".txt", "USA\n");
    EXPECT_THAT(countriesIn(path), ElementsAre(44));
}

TEST_F(ListParsersTest, ALoneOpeningQuoteNamesNoFile) {
    const std::string path = '"' + mDir.write("list.txt", "USA\n");
    EXPECT_THAT(countriesIn(path), IsEmpty());
    EXPECT_THAT(languagesIn(path), IsEmpty());
    EXPECT_THAT(countriesIn("\""), IsEmpty());
    EXPECT_THAT(countriesIn("\"\""), IsEmpty());
    EXPECT_EQ(errors()[0], path + " don't exist.");
}

TEST_F(ListParsersTest, WhatIsNoRegularFileReadsAsEmpty) {
    const std::string fifo = mDir.path("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_THAT(countriesIn(fifo), IsEmpty());
    EXPECT_THAT(languagesIn(mDir.path()), IsEmpty());
    EXPECT_THAT(countriesIn("/dev/zero"), IsEmpty());
    EXPECT_THAT(debugLines(),
                ElementsAre("filePath:" + fifo, "Totol country count:0", "filePath:" + mDir.path(),
                            "filePath:/dev/zero", "Totol country count:0"));
    EXPECT_EQ(errors().size(), 3U);
}

TEST_F(ListParsersTest, AnEmptyFileIsAnEmptyList) {
    EXPECT_THAT(countriesOf(""), IsEmpty());
    EXPECT_THAT(debugLines(),
                ElementsAre("filePath:" + mDir.path("list.txt"), "Totol country count:0"));
}

// Its first lines come, then the medium fails.
ssize_t failAfterTwoLines(int descriptor, void* bytes, size_t size) {
    return ReadHook::calls() == 1 ? ReadHook::read(descriptor, bytes, std::min<size_t>(size, 14))
                                  : ReadHook::fail(EIO);
}

TEST_F(ListParsersTest, PartOfAListIsNotTheList) {
    const std::string path = mDir.write("list.txt", "GERMANY\nITALY\nNORWAY\n");
    {
        ReadHook hook(failAfterTwoLines);
        EXPECT_THAT(countriesIn(path), IsEmpty());
    }
    EXPECT_EQ(debugLines().back(), "Totol country count:0");
    {
        ReadHook hook(failAfterTwoLines);
        std::vector<std::string> languages = {"before"};
        LanguageListParser::GetInstance().getLanguageList(path, languages);
        EXPECT_THAT(languages, ElementsAre("before"));
    }
    const std::string error = path + ":2: cannot be read further: Input/output error";
    EXPECT_THAT(errors(), ElementsAre(error, error));
}

TEST_F(ListParsersTest, ListThatIsTooLargeIsEmpty) {
    const std::string path = mDir.write("list.txt", "GERMANY\n");
    ASSERT_EQ(truncate(path.c_str(), (off_t{16} << 20) + 1), 0);
    EXPECT_THAT(countriesIn(path), IsEmpty());
    EXPECT_THAT(languagesIn(path), IsEmpty());
    const std::string error = path + ": cannot be read: larger than 16777216 bytes";
    EXPECT_THAT(errors(), ElementsAre(error, error));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
