// As RuleEdgesTest, for the rules about countries and channel plans.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tools/mlktree/tests/RuleEdges.h"

namespace mlk::tree {

namespace {

constexpr const char* kPlan = "tvconfigs/freqtables/dtv/freqtable_eu";
constexpr const char* kAnalogue = "tvconfigs/freqtables/atv/freqtable_bg";
constexpr const char* kPlanMap = "tvconfigs/freqtables/country_freq_map.xml";
constexpr const char* kCountries = "tvconfigs/country/country.txt";
constexpr const char* kCountryMap = "tvconfigs/tvsysmap/countries.xml";
constexpr const char* kSystems = "tvconfigs/tvsysmap/systems.xml";

std::vector<Edge> planEdges() {
    const std::string e21 = "21, 8000000, 474000, E21, DVB_AUTO\n";
    return {
            {"OverlapOfATwentieth", "overlapping-channels",
             written(kPlan, e21 + "22, 8000000, 481600, E22, DVB_AUTO\n"), ""},
            {"OverlapOfMore", "overlapping-channels",
             written(kPlan, e21 + "22, 8000000, 481599, E22, DVB_AUTO\n"),
             "tvconfigs/freqtables/dtv/freqtable_eu:2(1)"},
            {"OneFrequencyOfTwoBandwidths", "repeated-channel",
             written(kPlan, e21 + "22, 7000000, 474000, E22, DVB_AUTO\n"), ""},
            {"OneNumberOfTwoLabels", "repeated-channel",
             written(kPlan, e21 + "21, 8000000, 482000, H21, DVB_AUTO\n"), ""},
            {"OneLabelOfTwoNumbers", "repeated-channel",
             written(kPlan, e21 + "22, 8000000, 482000, E21, DVB_AUTO\n"),
             "tvconfigs/freqtables/dtv/freqtable_eu:2(1)"},
            {"NoLabels", "repeated-channel",
             written(kPlan, "21, 8000000, 474000, DVB_AUTO\n22, 8000000, 482000, DVB_AUTO\n"), ""},
            {"UnknownModulationOfAnAnaloguePlan", "plan-of-other-kind",
             written(kAnalogue, "2, 7000000, 48250, E2, UNKNOW\n"), ""},
            {"BesideItsPlace", "off-raster",
             written(kPlan, e21 + "22, 8000000, 482400, E22, DVB_AUTO\n"
                                  "23, 8000000, 490000, E23, DVB_AUTO\n"),
             ""},
            {"FartherBesideItsPlace", "off-raster",
             written(kPlan, e21 + "22, 8000000, 482401, E22, DVB_AUTO\n"
                                  "23, 8000000, 490000, E23, DVB_AUTO\n"),
             "tvconfigs/freqtables/dtv/freqtable_eu:2"},
            {"SatelliteChannel", "implausible-channel",
             written(kPlan, "1, 36000000, 11000000, S1, DVB_S\n"), ""},
            {"LowestAndHighestFrequency", "implausible-channel",
             written(kPlan, "1, 8000000, 40000, A, DVB_AUTO\n2, 8000000, 1300000, B, DVB_AUTO\n"),
             ""},
            {"BelowTheLowestFrequency", "implausible-channel",
             written(kPlan, "1, 8000000, 39999, A, DVB_AUTO\n"),
             "tvconfigs/freqtables/dtv/freqtable_eu:1"},
            {"LeastAndGreatestBandwidth", "implausible-channel",
             written(kPlan, "1, 1500000, 50000, A, DVB_AUTO\n2, 10000000, 70000, B, DVB_AUTO\n"),
             ""},
            {"BeyondTheGreatestBandwidth", "implausible-channel",
             written(kPlan, "1, 10000001, 50000, A, DVB_AUTO\n"),
             "tvconfigs/freqtables/dtv/freqtable_eu:1"},
            {"HighestNumberOfAChannel", "channel-number",
             written(kPlan, "65535, 8000000, 474000, E21, DVB_AUTO\n"), ""},
            {"BeyondTheHighestNumber", "channel-number",
             written(kPlan, "65536, 8000000, 474000, E21, DVB_AUTO\n"),
             "tvconfigs/freqtables/dtv/freqtable_eu:1"},
            {"LabelOfFourCharacters", "label-cut",
             written(kPlan, "13, 8000000, 474000, DS13, DTMB_AUTO\n"), ""},
            {"TwoLinesWithANul", "nul-in-plan",
             written(kPlan, std::string("21, 8000000, 474000, E21\0, DVB_AUTO\n"
                                        "22, 8000000, 482000, E22\0, DVB_AUTO\n",
                                        72)),
             "tvconfigs/freqtables/dtv/freqtable_eu:1"},
    };
}

// Lists with lines that were joined, and with lines that only look like it.
std::vector<Edge> joinedEdges() {
    const std::string first = std::string(kCountries) + ":1";
    return {
            {"JoinedAfterAName", "lost-country",
             written(kCountries, "GERMANY,GermanyAUSTRIA,Austria\n"), first},
            {"JoinedAfterANameThatIsNotAscii", "lost-country",
             written(kCountries, "GERMANY,\xe5\xbe\xb7\xe5\x9b\xbdNIGER,Niger\n"), first},
            {"JoinedByABlank", "lost-country", written(kCountries, "GERMANY,DE AUSTRIA,AT\n"),
             first},
            {"JoinedInTheThirdEntry", "lost-country",
             written(kCountries, "GERMANY,DEAUSTRIA,ATFRANCE,FR\n"), first},
            {"CountryInANameOfCapitals", "lost-country",
             written(kCountries,
                     "EQUATORIAL_GUINEA,EQUATORIALGUINEA,GQ\nNIGERIA,NIGERIA,NG\n"
                     "SOUTH_KOREA,Republic of KOREA,KR\nGERMANY,AM SAMOA,WS\n"),
             ""},
            {"CountryAtTheEndOfTheLine", "lost-country",
             written(kCountries, "SOMALIA,SoMALI\nDOMINICA,DominicaNIGER\n"), ""},
            {"NameOfTwoCountries", "unknown-country",
             written(kCountries, "GERMANYAUSTRIA,AT\nGERMANY AUSTRIA,AT\n"),
             first + " " + kCountries + ":2"},
            {"NamesThatHaveOthers", "unknown-country",
             written(kCountries, "NIGERIA,NG\nEQUATORIAL_GUINEA,GQ\nPAPUA_NEW_GUINEA,PG\n"), ""},
    };
}

std::vector<Edge> regionalEdges() {
    const std::string sweden =
            "    <COUNTRY_NAME>SWEDEN</COUNTRY_NAME>\n"
            "    <DTV_ANTENA>freqtable_eu</DTV_ANTENA>\n";
    return {
            {"BlockOfNoCountryInThePlans", "unknown-country",
             replaced(kPlanMap, "<COUNTRY_NAME>SWEDEN<", "<COUNTRY_NAME>DEFAULT<"), ""},
            {"RecordOfNoCountry", "unknown-country",
             replaced(kCountryMap, "<COUNTRY_NAME>SWEDEN<", "<COUNTRY_NAME>DEFAULT<"),
             "tvconfigs/tvsysmap/countries.xml:8"},
            {"FiveCountriesWithoutAPlan", "country-without-plan",
             written(kCountries, "GERMANY\nFRANCE\nSPAIN\nITALY\nPOLAND\nGREECE\n"),
             "tvconfigs/country/country.txt:2 tvconfigs/country/country.txt:3 "
             "tvconfigs/country/country.txt:4 tvconfigs/country/country.txt:5 "
             "tvconfigs/country/country.txt:6"},
            {"SixCountriesWithoutAPlan", "country-without-plan",
             written(kCountries, "GERMANY\nFRANCE\nSPAIN\nITALY\nPOLAND\nGREECE\nMALTA\n"),
             "tvconfigs/country/country.txt:2"},
            {"ShadowedByOneThatBringsTheSame", "shadowed-country",
             all({replaced(kCountryMap, "GERMANY", "ROMANIA"),
                  replaced(kCountryMap, "SWEDEN", "OMAN"),
                  replaced(kCountryMap, "DVB_NORDIC", "DVB_CENTRAL")}),
             ""},
            {"ShadowedByOneThatBringsAnother", "shadowed-country",
             all({replaced(kCountryMap, "GERMANY", "ROMANIA"),
                  replaced(kCountryMap, "SWEDEN", "OMAN")}),
             "tvconfigs/tvsysmap/countries.xml:7(2)"},
            {"MapWithoutFeatures", "missing-element",
             all({replaced(kCountryMap, "    <TV_CONFIG>/tvconfigs/tv/tv_eu.config</TV_CONFIG>\n",
                           ""),
                  replaced(kCountryMap, "    <TV_CONFIG>/tvconfigs/tv/tv_eu.config</TV_CONFIG>\n",
                           "")}),
             ""},
            {"MapOfUnknownElements", "empty-map",
             written(kPlanMap, "<COUNTRY_FREQ>\n</COUNTRY_FREQ>\n"), ""},
            {"RepeatedInTheSecondBlock", "repeated-element",
             replaced(kPlanMap, sweden, sweden + "    <DTV_ANTENA>freqtable_eu</DTV_ANTENA>\n"),
             "tvconfigs/freqtables/country_freq_map.xml:12(11)"},
            {"AttributeOnTheEighthLine", "item-number",
             replaced(kSystems, "\"SubtitleDefault\" value=\"off\"/>",
                      "\"SubtitleDefault\" value=\"off\"/>\n<Item category=\"[PowerOnMode]\""
                      "\n\n\n\n\nkey=\"ModeStatus\"\n\nvalue=\"3\"/>"),
             "tvconfigs/tvsysmap/systems.xml:14"},
            {"AttributeOnTheNinthLine", "item-number",
             replaced(kSystems, "\"SubtitleDefault\" value=\"off\"/>",
                      "\"SubtitleDefault\" value=\"off\"/>\n<Item category=\"[PowerOnMode]\""
                      "\n\n\n\n\nkey=\"ModeStatus\"\n\n\nvalue=\"3\"/>"),
             "tvconfigs/tvsysmap/systems.xml:7"},
    };
}

class RegionalEdges : public ::testing::TestWithParam<Edge> {};

TEST_P(RegionalEdges, HasItsFindings) {
    expectPlaces(GetParam());
}

std::vector<Edge> edges() {
    std::vector<Edge> every;
    for (const auto& some : {planEdges(), joinedEdges(), regionalEdges()}) {
        every.insert(every.end(), some.begin(), some.end());
    }
    return every;
}

INSTANTIATE_TEST_SUITE_P(Each, RegionalEdges, ::testing::ValuesIn(edges()),
                         [](const auto& param) { return std::string(param.param.name); });

}  // namespace

}  // namespace mlk::tree
