#include "regional/TvSysMapCfgHolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "regional/CountryListParser.h"
#include "regional/tests/TvSysMapFiles.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;

constexpr _tv_country kGermany{14};
constexpr _tv_country kUsa{44};
constexpr _tv_country kNiger{170};
constexpr _tv_country kNigeria{49};

class TvSysMapCfgHolderTest : public ::testing::Test, protected TvSysMapFiles {
  protected:
    std::string configs(const std::string& xmlFile, _tv_country country) {
        return textOf(mHolder.getConfigs(xmlFile, country));
    }
    std::string tvConfig(const std::string& name) const {
        return "[LiveTV]:TvConfig=" + set().tvconfigs() + "/tv/" + name + ".config;";
    }

    TvSysMapCfgHolder mHolder = processHolder();
};

TEST_F(TvSysMapCfgHolderTest, ACountryHasItsSystemsItemsAndItsOwnFile) {
    const std::string xml = writeBoth();
    EXPECT_EQ(configs(xml, kGermany),
              "[A]:k=" + set().tvdata() + "/x;[LiveTV]:Hbbtv=true;" + tvConfig("eu"));
    EXPECT_EQ(configs(xml, kUsa), "[LiveTV]:Hbbtv=false;" + tvConfig("na"));
    EXPECT_EQ(mHolder.currentCountry(), kUsa);
    EXPECT_THAT(errors(), IsEmpty());
    EXPECT_THAT(debugLines(),
                ElementsAre("[loadConfigXmlFile:224] xmlFile=" + xml,
                            "[loadConfigXmlFile:243] mCountryTvConfigMapFile="
                            "/tvconfigs/countries.xml",
                            "[loadCountryTvConfigMapXML:386] mCoutryTvConfigMap.size()=0, "
                            "xmlPath=" +
                                    set().tvconfigs() + "/countries.xml",
                            "[loadCountryTvConfigMapXML:436] size of {mCoutryTvConfigMap, "
                            "mCountryList}={2, 2}"))
            << "a holder reads its files once";
}

TEST_F(TvSysMapCfgHolderTest, ASecondLoadingForgetsTheFirst) {
    const std::string xml = writeBoth();
    ASSERT_TRUE(mHolder.loadConfigXmlFile(xml));
    ASSERT_TRUE(mHolder.loadCountryTvConfigMapXML());
    writeSystems(system("DVB", item("[A]", "k", "second")));
    writeCountries(country("USA", "DVB", ""));
    ASSERT_TRUE(mHolder.loadConfigXmlFile(xml));
    ASSERT_TRUE(mHolder.loadCountryTvConfigMapXML());
    EXPECT_EQ(textOf(mHolder.getConfigs(xml, kUsa)), "[A]:k=second;");
    EXPECT_EQ(mHolder.getTvSysName(kGermany), "");
    mHolder.parseCountryId();
    EXPECT_EQ(mHolder.currentCountry(), kUsa) << "the first country of the map in use";
}

TEST_F(TvSysMapCfgHolderTest, OfAKeyThatComesTwiceTheFirstValueCounts) {
    writeCountries(country("USA", "A", ""));
    EXPECT_EQ(configs(writeSystems(system("A", item("[S]", "k", "1") + item("[S]", "k", "2")) +
                                   system("B", item("[S]", "k", "3")) +
                                   system("A", item("[S]", "k", "4") + item("[S]", "l", "5"))),
                      kUsa),
              "[S]:k=1;[S]:l=5;");
}

TEST_F(TvSysMapCfgHolderTest, TheCountrysOwnFileWinsOverAnItem) {
    writeCountries(country("USA", "A", "/tvconfigs/tv/own.config") + country("JAPAN", "A", ""));
    const std::string xml = writeSystems(system("A", item("[LiveTV]", "TvConfig", "system's")));
    EXPECT_EQ(configs(xml, kUsa), tvConfig("own"));
    EXPECT_EQ(configs(xml, _tv_country{21}), "[LiveTV]:TvConfig=system's;");
}

TEST_F(TvSysMapCfgHolderTest, ACountryWithoutSystemHasOnlyItsFile) {
    writeCountries(country("USA", "NONE", "/tvconfigs/tv/us.config") + country("JAPAN", "", "") +
                   country("GERMANY", "EMPTY", "/tvconfigs/tv/de.config"));
    const std::string xml = writeSystems(system("", item("[S]", "k", "v")) + system("EMPTY", ""));
    EXPECT_EQ(configs(xml, kUsa), tvConfig("us"));
    EXPECT_EQ(configs(xml, _tv_country{21}), "") << "a system without name is nobody's";
    EXPECT_EQ(configs(xml, kGermany), tvConfig("de"));
    EXPECT_EQ(configs(xml, _tv_country{20}), "") << "ITALY is not in the map";
    EXPECT_EQ(configs(xml, _tv_country{161}), "");
    EXPECT_EQ(configs(xml, _tv_country{-7}), "");
}

TEST_F(TvSysMapCfgHolderTest, ACountryTakesTheFirstRecordThatContainsItsName) {
    const std::string nigeria = country("NIGERIA", "A", "/tvconfigs/a");
    const std::string niger = country("NIGER", "B", "/tvconfigs/b");
    writeCountries(nigeria + niger);
    ASSERT_TRUE(mHolder.loadConfigXmlFile(writeSystems("")));
    ASSERT_TRUE(mHolder.loadCountryTvConfigMapXML());
    EXPECT_EQ(mHolder.getTvSysName(kNiger), "A");
    EXPECT_EQ(mHolder.getTvConfigName(kNiger), "/tvconfigs/a");
    EXPECT_EQ(mHolder.getTvSysName(kNigeria), "A");
    writeCountries(niger + nigeria);
    ASSERT_TRUE(mHolder.loadCountryTvConfigMapXML());
    EXPECT_EQ(mHolder.getTvSysName(kNiger), "B");
    EXPECT_EQ(mHolder.getTvSysName(kNigeria), "A");
    EXPECT_EQ(mHolder.getTvSysName(kUsa), "");
    EXPECT_EQ(mHolder.getTvConfigName(_tv_country{161}), "");
}

TEST_F(TvSysMapCfgHolderTest, LoadsNothingFromAnEmptyPath) {
    EXPECT_FALSE(mHolder.loadConfigXmlFile(""));
    EXPECT_THAT(debugLines(), ElementsAre("[loadConfigXmlFile:224] xmlFile="));
    EXPECT_THAT(errors(), ElementsAre("[loadConfigXmlFile:227] chkchk xmlFile is empty!!"));
    EXPECT_THAT(mHolder.getConfigs("", kUsa), IsEmpty());
}

TEST_F(TvSysMapCfgHolderTest, AMissingOrBrokenSystemFile) {
    EXPECT_EQ(configs(set().tvconfigs() + "/missing.xml", kUsa), "");
    EXPECT_THAT(errors(), ElementsAre("[loadConfigXmlFile:235] LoadFile fail, error "
                                      "XML_ERROR_FILE_NOT_FOUND"));
    EXPECT_EQ(configs(write("tvsys.xml", "<TvSystemConfigration>"), kUsa), "");
    EXPECT_EQ(errors().back(),
              "[loadConfigXmlFile:235] LoadFile fail, error XML_ERROR_MISMATCHED_ELEMENT");
    const std::string fifo = set().tvconfigs() + "/fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(configs(fifo, kUsa), "");
    EXPECT_EQ(configs(set().tvconfigs(), kUsa), "");
    EXPECT_EQ(mHolder.currentCountry(), kNoCountry);
}

TEST_F(TvSysMapCfgHolderTest, AFailedLoadChangesNothing) {
    const std::string xml = writeBoth();
    ASSERT_TRUE(mHolder.loadConfigXmlFile(xml));
    ASSERT_TRUE(mHolder.loadCountryTvConfigMapXML());
    EXPECT_FALSE(mHolder.loadConfigXmlFile(write("broken.xml", "<")));
    writeCountries("<");
    log().clear();
    EXPECT_FALSE(mHolder.loadCountryTvConfigMapXML());
    EXPECT_THAT(debugLines(), ElementsAre("[loadCountryTvConfigMapXML:386] "
                                          "mCoutryTvConfigMap.size()=2, xmlPath=" +
                                          set().tvconfigs() + "/countries.xml"));
    EXPECT_EQ(mHolder.getTvSysName(kUsa), "ATSC");
    EXPECT_EQ(configs("", kUsa), "[LiveTV]:Hbbtv=false;" + tvConfig("na"));
}

TEST_F(TvSysMapCfgHolderTest, AnItemNeedsAllItsAttributes) {
    writeCountries(country("USA", "A", ""));
    const std::string xml = writeSystems(
            system("A",
                   "<Item key='k' value='v'/>\n<Item category='[S]' value='v'/>\n"
                   "<Item category='[S]' key='k'/>\n<Item category='' key='' value=''/>\n" +
                           item("[S]", "k", "v")) +
            "<TvSystem/>\n");
    EXPECT_EQ(configs(xml, kUsa), ":=;[S]:k=v;");
    EXPECT_THAT(errors(), ElementsAre(xml + ":4: item without category, key or value, skipped",
                                      xml + ":5: item without category, key or value, skipped",
                                      xml + ":6: item without category, key or value, skipped",
                                      xml + ":10: TV system without type, skipped"));
}

TEST_F(TvSysMapCfgHolderTest, SectionsBeginAtTheFirstElementOfTheirName) {
    writeCountries("<X/>" + country("GERMANY", "A", "") +
                   "<ANY><COUNTRY_NAME>USA</COUNTRY_NAME><TV_SYSTEM>A</TV_SYSTEM><TV_CONFIG/>"
                   "</ANY>");
    const std::string xml =
            writeSystems("<Other type='A'>" + item("[S]", "a", "1") + "</Other>" + system("B", "") +
                         "<Other type='A'><Any category='[S]' key='b' value='2'/>" +
                         item("[S]", "c", "3") + "<Any category='[S]' key='d' value='4'/></Other>");
    EXPECT_EQ(configs(xml, kUsa), "[S]:c=3;[S]:d=4;");
}

TEST_F(TvSysMapCfgHolderTest, EntitiesInValues) {
    writeCountries(country("USA", "A&amp;B", ""));
    EXPECT_EQ(configs(writeSystems(system("A&amp;B", item("[S]", "&lt;k&gt;", " &quot;v&#33; "))),
                      kUsa),
              "[S]:<k>= \"v! ;");
}

TEST_F(TvSysMapCfgHolderTest, AFileWithoutSections) {
    EXPECT_EQ(configs(write("tvsys.xml", "<X/>"), kUsa), "");
    EXPECT_THAT(debugLines(), Contains("[loadConfigXmlFile:243] mCountryTvConfigMapFile="));
    EXPECT_THAT(errors(),
                ElementsAre("[loadCountryTvConfigMapXML:373] countryTvSysMapXML is empty!!"));
}

TEST_F(TvSysMapCfgHolderTest, TheCountryMapLiesBelowTvconfigs) {
    ASSERT_TRUE(mHolder.loadConfigXmlFile(writeSystemFile("/vendor/countries.xml", "")));
    EXPECT_FALSE(mHolder.loadCountryTvConfigMapXML());
    EXPECT_THAT(errors(), ElementsAre("[loadCountryTvConfigMapXML:383] chkchk file format "
                                      "(countryTvSysMapXML=/vendor/countries.xml)"));
    writeCountries(country("USA", "A", ""));
    ASSERT_TRUE(
            mHolder.loadConfigXmlFile(writeSystemFile("\n  /mnt/old/tvconfigs/countries.xml", "")));
    EXPECT_TRUE(mHolder.loadCountryTvConfigMapXML()) << "wherever the partition was";
    ASSERT_TRUE(mHolder.loadConfigXmlFile(writeSystemFile("/tvconfigs/missing.xml", "")));
    EXPECT_FALSE(mHolder.loadCountryTvConfigMapXML());
    EXPECT_EQ(errors().back(),
              "[loadCountryTvConfigMapXML:392] LoadFile fail, error "
              "XML_ERROR_FILE_NOT_FOUND");
}

TEST_F(TvSysMapCfgHolderTest, GapsInTheCountryMap) {
    writeCountries(
            "<COUNTRY_TVCONFIG_MAP><COUNTRY_NAME>USA</COUNTRY_NAME></COUNTRY_TVCONFIG_MAP>"
            "<COUNTRY_TVCONFIG_MAP><TV_SYSTEM>A</TV_SYSTEM></COUNTRY_TVCONFIG_MAP>"
            "<COUNTRY_TVCONFIG_MAP><COUNTRY_NAME></COUNTRY_NAME></COUNTRY_TVCONFIG_MAP>"
            "<COUNTRY_TVCONFIG_MAP><COUNTRY_NAME>JAPAN</COUNTRY_NAME><TV_SYSTEM/>"
            "<TV_CONFIG/></COUNTRY_TVCONFIG_MAP>");
    ASSERT_TRUE(mHolder.loadConfigXmlFile(writeSystems("")));
    EXPECT_TRUE(mHolder.loadCountryTvConfigMapXML());
    EXPECT_THAT(errors(), ElementsAre("[loadCountryTvConfigMapXML:417] without tvSysName",
                                      "[loadCountryTvConfigMapXML:427] without tvConfigName",
                                      "[loadCountryTvConfigMapXML:432] without country name",
                                      "[loadCountryTvConfigMapXML:432] without country name"));
    EXPECT_EQ(debugLines().back(),
              "[loadCountryTvConfigMapXML:436] size of {mCoutryTvConfigMap, "
              "mCountryList}={2, 2}");
    EXPECT_EQ(mHolder.getTvSysName(kUsa), "");
}

TEST_F(TvSysMapCfgHolderTest, TheCountrysFileLiesBelowTvconfigsToo) {
    writeCountries(country("USA", "A", "/old/tvconfigs/tv/us.config") +
                   country("GERMANY", "A", "/vendor/de.config") + country("JAPAN", "A", ""));
    ASSERT_TRUE(mHolder.loadConfigXmlFile(writeSystems("")));
    ASSERT_TRUE(mHolder.loadCountryTvConfigMapXML());
    EXPECT_EQ(mHolder.getTvConfigFilePath(kUsa), set().tvconfigs() + "/tv/us.config");
    EXPECT_EQ(mHolder.getTvConfigFilePath(_tv_country{21}), "");
    EXPECT_THAT(errors(), IsEmpty());
    EXPECT_EQ(mHolder.getTvConfigFilePath(kGermany), "");
    EXPECT_THAT(errors(), ElementsAre("TV_CONFIG /vendor/de.config does not lie below /tvconfigs"));
}

TEST_F(TvSysMapCfgHolderTest, OnlyALeadingMarkerIsABoardPath) {
    const auto patched = [](const char* value) {
        return processHolder().patchToTargetBoardPath(value);
    };
    EXPECT_EQ(patched("/tvconfigs/a"), set().tvconfigs() + "/a");
    EXPECT_EQ(patched("/tvdata/a"), set().tvdata() + "/a");
    EXPECT_EQ(patched("/tvconfigs/tvdata/tvconfigs"), set().tvconfigs() + "/tvdata/tvconfigs");
    EXPECT_EQ(patched("/tvdata"), set().tvdata());
    for (const char* const value :
         {"", "x", "/mnt/tvconfigs/a", " /tvdata/a", "/impdata/a", "tvconfigs/a", "/tvconfig"}) {
        EXPECT_EQ(patched(value), value);
    }
}

TEST_F(TvSysMapCfgHolderTest, AnUnknownCountryCountsAsTheFirst) {
    writeCountries(country("Narnia", "A", "/tvconfigs/n"));
    ASSERT_TRUE(mHolder.loadConfigXmlFile(writeSystems("")));
    ASSERT_TRUE(mHolder.loadCountryTvConfigMapXML());
    mHolder.parseCountryId();
    EXPECT_EQ(mHolder.currentCountry(), _tv_country{0});
    EXPECT_EQ(countryId(), "COUNTRY_ID=0\n");
    EXPECT_EQ(processHolder().getCountryName(_tv_country{0}), "ANDORRA");
    writeCountries(country("AMERICA", "A", "/tvconfigs/a"));
    ASSERT_TRUE(mHolder.loadCountryTvConfigMapXML());
    EXPECT_EQ(processHolder().getCountryName(_tv_country{0}), "AMERICA")
            << "of the names of one value the first counts";
    std::string name;
    CountryListParser::GetInstance().getCountryName(_tv_country{0}, name);
    EXPECT_EQ(name, "ANDORRA") << "the list readers have names of their own";
    EXPECT_EQ(processHolder().getCountryName(_tv_country{161}), "");
    EXPECT_EQ(processHolder().getCountryName(kNoCountry), "DEFAULT");
}

TEST_F(TvSysMapCfgHolderTest, DumpsOnlyWhenAskedTo) {
    const std::string xml = writeBoth();
    for (const char* const off : {"", "0", "-1", "on", "true"}) {
        set().setProperty("persist.vendor.mlk.tvsysmap.debug", off);
        TvSysMapCfgHolder holder = processHolder();
        log().clear();
        holder.getConfigs(xml, kUsa);
        EXPECT_EQ(debugLines().size(), 4U) << off;
    }
    set().setProperty("persist.vendor.mlk.tvsysmap.debug", "1");
    log().clear();
    mHolder.getConfigs(xml, kUsa);
    EXPECT_THAT(debugLines(),
                ElementsAre(HasSubstr("224"), HasSubstr("243"), "[dumpConfigXmlFile] tvSystem=DVB",
                            "\t[A]:k=" + set().tvdata() + "/x", "\t[LiveTV]:Hbbtv=true",
                            "[dumpConfigXmlFile] tvSystem=ATSC", "\t[LiveTV]:Hbbtv=false",
                            HasSubstr("386"), HasSubstr("436"),
                            "[dumpTvConfigMap] tv_config_map_xml path=" + set().tvconfigs() +
                                    "/countries.xml",
                            "\tGERMANY\t:DVB\t:/tvconfigs/tv/eu.config",
                            "\tUSA\t:ATSC\t:/tvconfigs/tv/na.config"));
}

TEST_F(TvSysMapCfgHolderTest, TheDumpComplainsAboutThePathLikeTheLoader) {
    set().setProperty("persist.vendor.mlk.tvsysmap.debug", "2");
    mHolder.dumpTvConfigMap();
    EXPECT_THAT(errors(), ElementsAre(MatchesRegex("\\[dumpTvConfigMap:[0-9]+\\] chkchk "
                                                   "countryTvSysMapXML is empty!!")));
    ASSERT_TRUE(mHolder.loadConfigXmlFile(writeSystemFile("/x.xml", "")));
    mHolder.dumpTvConfigMap();
    EXPECT_THAT(errors().back(), MatchesRegex("\\[dumpTvConfigMap:[0-9]+\\] chkchk file format "
                                              "\\(countryTvSysMapXML=/x.xml\\)"));
}

TEST_F(TvSysMapCfgHolderTest, IsFileExist) {
    EXPECT_TRUE(TvSysMapCfgHolder::isFileExist(set().tvconfigs()));
    EXPECT_THAT(log().lines(), IsEmpty());
    EXPECT_FALSE(TvSysMapCfgHolder::isFileExist("/missing"));
    EXPECT_THAT(debugLines(), ElementsAre(MatchesRegex("\\[isFileExist:[0-9]+\\] /missing don't "
                                                       "exist.")));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
