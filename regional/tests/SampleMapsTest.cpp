// Checks the sample's country maps against each other: every name leads to an entry, the right one.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "common/Texts.h"
#include "regional/CountryListParser.h"
#include "regional/FreqTableParser.h"
#include "regional/XmlFile.h"
#include "regional/tests/TvSysMapFiles.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

// The models of each region; the first one's default country is the region's.
struct Region {
    const char* name;
    std::vector<std::string> models;
    size_t leastSystems;
    size_t leastCountries;
};
const Region kRegions[] = {
        {"eu", {"TRQ43_M2_EU", "TRQ32_S1_EU"}, 5, 60},
        {"uk", {"TRQ65_C3_UK"}, 1, 2},
        {"latam", {"TRQ55_M2_LATAM"}, 1, 16},
        {"na", {"TRQ50_M2_NA"}, 1, 5},
        {"cn", {"TRQ55_C3_CN"}, 1, 2},
        {"apac", {"TRQ75_C4_APAC"}, 1, 20},
};

class SampleMapsTest : public ::testing::Test, protected TvSysMapFiles {
  protected:
    SampleMapsTest() { set().copyFrom(MLK_SAMPLES_DIR "/partitions"); }

    std::string path(const std::string& name) const { return set().tvconfigs() + "/" + name; }

    // Maps "[SECTION] key" to the value for all items of a model file.
    std::map<std::string, std::string> modelItems(const std::string& model) const {
        std::map<std::string, std::string> items;
        std::ifstream file(path("model/" + model + ".ini"));
        EXPECT_TRUE(file) << model;
        std::string section;
        for (std::string line; std::getline(file, line);) {
            const size_t equals = line.find('=');
            if (line[0] == '[') {
                section = line.substr(0, line.find(']') + 1);
            } else if (line[0] != '#' && equals != std::string::npos) {
                const std::string key = line.substr(0, line.find_last_not_of(' ', equals - 1) + 1);
                std::string value = line.substr(equals + 1);
                value.erase(0, value.find_first_not_of(' '));
                items[section + " " + key] = value.substr(0, value.find_first_of(" #\r"));
            }
        }
        return items;
    }

    // Texts of an element in all blocks of a map, in file order.
    std::vector<std::string> textsOf(const std::string& name, const char* element) const {
        std::vector<std::string> texts;
        const XmlFile file(path(name));
        EXPECT_EQ(file.error(), nullptr);
        const char* const first =
                name.rfind("tvsysmap/", 0) == 0 ? "COUNTRY_TVCONFIG_MAP" : "COUNTRY_FREQ_MAP";
        for (const auto* block = file.first(first); block != nullptr;
             block = block->NextSiblingElement()) {
            texts.emplace_back(orEmpty(textOfChild(*block, element)));
        }
        return texts;
    }

    static _tv_country valueOf(const std::string& name) {
        const std::optional<int32_t> value = countryNames().find(name);
        EXPECT_TRUE(value) << name << " is no country";
        return _tv_country{value.value_or(-1)};
    }

    // The countries that the menu of a region offers.
    std::vector<std::string> offered(const std::string& region) const {
        std::vector<std::string> names;
        for (const _tv_country country : CountryListParser::GetInstance().getCountryList(
                     path("country/country_" + region + ".txt"))) {
            names.emplace_back();
            CountryListParser::GetInstance().getCountryName(country, names.back());
        }
        EXPECT_THAT(names, Not(IsEmpty()));
        return names;
    }

    size_t channels(const std::string& country, FreqTableType type, AtscCableType cableType) const {
        std::vector<HidlFreqListItem> items;
        return processParser().GetTableList("", valueOf(country), type, cableType, items)
                       ? items.size()
                       : 0;
    }
};

TEST_F(SampleMapsTest, TheFrequencyMapKnowsManyCountriesOnceEach) {
    const auto countries = textsOf("freqtables/country_freq_map.xml", "COUNTRY_NAME");
    EXPECT_GE(countries.size(), 60U);
    std::set<std::string> seen;
    for (const std::string& country : countries) {
        valueOf(country);
        EXPECT_TRUE(seen.insert(country).second) << country;
    }
    for (const Region& region : kRegions) {
        for (const std::string& country : offered(region.name)) {
            EXPECT_EQ(seen.count(country), 1U) << country;
        }
    }
}

TEST_F(SampleMapsTest, EveryPlanOfTheFrequencyMapIsThereAndEveryPlanIsUsed) {
    CountryFreqMapParse::GetInstance().GetTvConfigPath();
    ASSERT_TRUE(CountryFreqMapParse::GetInstance().loadCountryFreqMapXML());
    std::set<std::string> used;
    for (const CountryFreqMapEntry& entry : RegionalPeer::entries()) {
        EXPECT_GT(channels(entry.countryName, FreqTableType::DTV_ANTENNA, AtscCableType::AUTO), 20U)
                << entry.countryName;
        used.insert("dtv/" + entry.dtvAntenna);
        if (!entry.atvAntenna.empty()) {
            EXPECT_GT(channels(entry.countryName, FreqTableType::ATV_ANTENNA, AtscCableType::AUTO),
                      20U);
            used.insert("atv/" + entry.atvAntenna);
        }
        for (const auto& [type, table] : entry.dtvCable) {
            EXPECT_GT(channels(entry.countryName, FreqTableType::DTV_CABLE, type), 20U);
            used.insert("dtv/" + table);
        }
        for (const auto& [type, table] : entry.atvCable) {
            EXPECT_GT(channels(entry.countryName, FreqTableType::ATV_CABLE, type), 20U);
            used.insert("atv/" + table);
        }
    }
    EXPECT_THAT(errors(), IsEmpty());
    for (const std::string kind : {"dtv", "atv"}) {
        for (const auto& file : std::filesystem::directory_iterator(path("freqtables/" + kind))) {
            EXPECT_EQ(used.count(kind + "/" + file.path().filename().string()), 1U) << file.path();
        }
    }
}

TEST_F(SampleMapsTest, TheUnitedStatesHaveAllCablePlans) {
    std::set<std::vector<int32_t>> plans;
    for (const FreqTableType type : {FreqTableType::DTV_CABLE, FreqTableType::ATV_CABLE}) {
        for (const AtscCableType cable :
             {AtscCableType::AUTO, AtscCableType::STD, AtscCableType::HRC, AtscCableType::IRC}) {
            std::vector<HidlFreqListItem> items;
            EXPECT_TRUE(processParser().GetTableList("", valueOf("USA"), type, cable, items));
            std::vector<int32_t> frequencies;
            for (const HidlFreqListItem& item : items) {
                frequencies.push_back(item.frequency);
            }
            plans.insert(frequencies);
        }
    }
    EXPECT_THAT(plans, SizeIs(8));
}

TEST_F(SampleMapsTest, ANewSetStartsInTheCountryOfItsModel) {
    for (const Region& region : kRegions) {
        std::filesystem::remove_all(folder());
        TvSysMapCfgHolder holder = processHolder();
        EXPECT_THAT(holder.getConfigs(path("tvsysmap/tvsys_" + std::string(region.name) + ".xml"),
                                      kNoCountry),
                    Not(IsEmpty()));
        for (const std::string& model : region.models) {
            const auto items = modelItems(model);
            EXPECT_EQ(processHolder().getCountryName(holder.currentCountry()),
                      items.at("[COUNTRY] COUNTRY_DEFAULT"));
            EXPECT_EQ(items.at("[COUNTRY] tvSysMap"),
                      "\"/tvconfigs/tvsysmap/tvsys_" + std::string(region.name) + ".xml\"");
            EXPECT_EQ(items.at("[FREQTABLE] FREQ_TABLE_PATH"), "\"/tvconfigs/freqtables\"");
            const std::string own = items.at("[LiveTV] TvConfig");
            EXPECT_EQ(own, "\"" + holder.getTvConfigName(holder.currentCountry()) + "\"")
                    << "a set that has no country yet uses the same file";
        }
    }
    EXPECT_THAT(errors(), IsEmpty());
}

// A name that is part of another, as OMAN of ROMANIA, must not lead to that one's record.
TEST_F(SampleMapsTest, EveryCountryFindsItsOwnRecord) {
    for (const Region& region : kRegions) {
        const std::string name = region.name;
        TvSysMapCfgHolder holder = processHolder();
        ASSERT_TRUE(holder.loadConfigXmlFile(path("tvsysmap/tvsys_" + name + ".xml")));
        ASSERT_TRUE(holder.loadCountryTvConfigMapXML());
        const auto countries = textsOf("tvsysmap/countries_" + name + ".xml", "COUNTRY_NAME");
        const auto systems = textsOf("tvsysmap/countries_" + name + ".xml", "TV_SYSTEM");
        const auto configs = textsOf("tvsysmap/countries_" + name + ".xml", "TV_CONFIG");
        EXPECT_GE(countries.size(), region.leastCountries);
        for (size_t at = 0; at < countries.size(); ++at) {
            const _tv_country country = valueOf(countries[at]);
            EXPECT_EQ(holder.getTvSysName(country), systems[at]) << countries[at];
            EXPECT_EQ(holder.getTvConfigName(country), configs[at]) << countries[at];
            EXPECT_TRUE(std::filesystem::is_regular_file(holder.getTvConfigFilePath(country)));
        }
        for (const std::string& country : offered(name)) {
            EXPECT_THAT(countries, Contains(country));
        }
    }
    EXPECT_THAT(errors(), IsEmpty());
}

// A change of the country undoes nothing, so each country has to set all items that another sets.
TEST_F(SampleMapsTest, TheSystemsOfARegionHaveTheSameItemsAndTheModelsKnowThem) {
    for (const Region& region : kRegions) {
        const std::string xml = path("tvsysmap/tvsys_" + std::string(region.name) + ".xml");
        const XmlFile file(xml);
        std::set<std::string> used;
        const auto systems =
                textsOf("tvsysmap/countries_" + std::string(region.name) + ".xml", "TV_SYSTEM");
        used.insert(systems.begin(), systems.end());
        std::set<std::set<std::string>> keys;
        std::set<std::string> names;
        for (const auto* system = file.first("TvSystemConfigration")->FirstChildElement("TvSystem");
             system != nullptr; system = system->NextSiblingElement()) {
            names.insert(system->Attribute("type"));
            std::set<std::string> ofSystem;
            for (const auto* item = system->FirstChildElement("Item"); item != nullptr;
                 item = item->NextSiblingElement()) {
                ofSystem.insert(std::string(item->Attribute("category")) + " " +
                                item->Attribute("key"));
                const std::string value =
                        processHolder().patchToTargetBoardPath(item->Attribute("value"));
                EXPECT_TRUE(value.front() != '/' || std::filesystem::is_regular_file(value))
                        << value;
            }
            keys.insert(ofSystem);
        }
        EXPECT_THAT(names, ::testing::ContainerEq(used)) << xml;
        EXPECT_GE(names.size(), region.leastSystems);
        ASSERT_THAT(keys, SizeIs(1)) << xml;
        for (const std::string& model : region.models) {
            const auto items = modelItems(model);
            for (const std::string& key : *keys.begin()) {
                EXPECT_EQ(items.count(key), 1U) << model << " " << key;
            }
        }
    }
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
