// The tables of words, elements and properties against a set: each name that is written otherwise
// changes what the set is, and no other property is read.

#include <gmock/gmock.h>

#include <map>
#include <regex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "common/testing/FixedProperties.h"
#include "frameworkconfigs/FrameworkSwitches.h"
#include "host/testing/QuietLog.h"
#include "host/testing/TempDir.h"
#include "projectconfigs/BoardID.h"
#include "projectconfigs/ChainKeywords.h"
#include "projectconfigs/KnownProperties.h"
#include "projectconfigs/ProjectID.h"
#include "projectconfigs/ProjectSet.h"
#include "regional/RegionalNames.h"
#include "tvconfigs/TvFeatures.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

/** Properties that tell which of them were read. */
class HeardProperties : public FixedProperties {
  public:
    using FixedProperties::FixedProperties;

    std::string get(const char* key) const override {
        mHeard.insert(key);
        return FixedProperties::get(key);
    }
    const std::set<std::string>& heard() const { return mHeard; }

  private:
    mutable std::set<std::string> mHeard;
};

struct SetFile {
    std::string path;
    std::string text;
};

/** The files of a set that uses every word, element, attribute and cable type once. */
std::map<FileFormat, SetFile> wholeSet() {
    return {
            {FileFormat::CUSTOMER,
             {"tvconfigs/customer.ini", "CUSTOMER_ID=17\nSYS_INI=/tvconfigs/sys.ini\n"}},
            {FileFormat::SYSTEM, {"tvconfigs/sys.ini", "Model_2=/tvconfigs/model/b.ini\n"}},
            {FileFormat::PROJECT_ID, {"impdata/project_id.bin", "PROJECT_ID=2\n"}},
            {FileFormat::BOARD_ID, {"impdata/board_id.bin", "BOARD_ID=/tvconfigs/board.ini\n"}},
            {FileFormat::COUNTRY_ID, {"tvdata/tvsysmap/country_id.bin", "COUNTRY_ID=38\n"}},
            {FileFormat::TV_SYSTEMS,
             {"tvconfigs/systems.xml",
              "<CountryTvSysMapXML>/tvconfigs/countries.xml</CountryTvSysMapXML>"
              "<TvSystemConfigration><TvSystem type=\"S\"><Item category=\"[TEST]\" "
              "key=\"system\" value=\"Swedish\"/></TvSystem></TvSystemConfigration>"}},
            {FileFormat::COUNTRY_MAP,
             {"tvconfigs/countries.xml",
              "<COUNTRY_TVCONFIG_MAP><COUNTRY_NAME>SWEDEN</COUNTRY_NAME><TV_SYSTEM>S</TV_SYSTEM>"
              "<TV_CONFIG>/tvconfigs/tv.swedish</TV_CONFIG></COUNTRY_TVCONFIG_MAP>"}},
            {FileFormat::CHANNEL_MAP,
             {"tvconfigs/freqtables/country_freq_map.xml",
              "<COUNTRY_FREQ_MAP><COUNTRY_NAME>SWEDEN</COUNTRY_NAME><DTV_ANTENA>1</DTV_ANTENA>"
              "<DTV_CABLE TYPE=\"AUTO\">2</DTV_CABLE><DTV_CABLE TYPE=\"STD\">3</DTV_CABLE>"
              "<DTV_CABLE TYPE=\"HRC\">4</DTV_CABLE><DTV_CABLE TYPE=\"IRC\">5</DTV_CABLE>"
              "<ATV_ANTENA>2</ATV_ANTENA><ATV_CABLE TYPE=\"STD\">3</ATV_CABLE>"
              "</COUNTRY_FREQ_MAP>"}},
    };
}

class Names : public ::testing::Test {
  protected:
    Names() {
        mDir.write("tvconfigs/model/b.ini",
                   "[COUNTRY]\ntvSysMap=/tvconfigs/systems.xml\n[LiveTV]\nTvConfig=\n"
                   "[TEST]\nsystem=\nboard=\n");
        mDir.write("tvconfigs/board.ini", "[TEST]\nboard=one\n");
        mDir.write("tvconfigs/tv.swedish", "persist.vendor.mlk.tv.enable_av=true\n");
        // A plan has as many channels as its name says.
        std::string plan;
        for (const char* name : {"1", "2", "3", "4", "5"}) {
            plan += "1 0 474000\n";
            mDir.write(std::string("tvconfigs/freqtables/dtv/") + name, plan);
            mDir.write(std::string("tvconfigs/freqtables/atv/") + name, plan);
        }
    }
    Partitions partitions() const {
        return {mDir.path("tvconfigs"), mDir.path("tvdata"), mDir.path("impdata")};
    }

    /** What the set is, a line each. */
    std::string described(HeardProperties& properties) const {
        RegionalData data([this] { return partitions(); });
        const auto id = static_cast<int32_t>(ProjectID(partitions().impdata, 1).Get());
        const ProjectSet set(partitions(), properties, data,
                             {id, BoardID(partitions().impdata).Get(), kNoCountry});
        const ProjectParser& items = set.items();
        const std::string config = items.getInfo(kTvConfigItem);
        const TvFeatures features(config.c_str(), partitions(), properties);
        std::vector<std::string> list;
        items.getProjectIniList(list);
        std::string text = items.getCustomerId() + "\nindex " + std::to_string(id) + " of " +
                           std::to_string(items.getProjectMaxIdx()) + "\n";
        for (const std::string& model : list) {
            text += "model " + model + "\n";
        }
        text += "board " + items.getInfo({"[TEST]", "board"}) + "\nsystem " +
                items.getInfo({"[TEST]", "system"}) + "\nfeatures " + config + "\nplans";
        for (const auto type : {FreqTableType::DTV_ANTENNA, FreqTableType::DTV_CABLE,
                                FreqTableType::ATV_ANTENNA, FreqTableType::ATV_CABLE}) {
            for (const auto cable : {AtscCableType::AUTO, AtscCableType::STD, AtscCableType::HRC,
                                     AtscCableType::IRC}) {
                constexpr _tv_country kSweden{38};
                const size_t channels = set.region().plan(kSweden, type, cable).size();
                text += ' ' + std::to_string(channels);
            }
        }
        return text + (features.get(kTvFlags[tvFlagItem("avEnabled")]) ? "\nAV\n" : "\nno AV\n");
    }

    /** The same of the whole set with some text of one file replaced. */
    std::string described(FileFormat file, const std::string& pattern,
                          const std::string& replacement) {
        auto files = wholeSet();
        std::string& text = files.at(file).text;
        text = std::regex_replace(text, std::regex(pattern), replacement);
        for (const auto& [format, each] : files) {
            mDir.write(each.path, each.text);
        }
        HeardProperties properties;
        return described(properties);
    }
    std::string whole() { return described(FileFormat::CUSTOMER, "NOTHING", ""); }

    const mlk::testing::QuietLog mQuiet;
    const mlk::testing::TempDir mDir;
};

TEST_F(Names, OfTheWholeSetAreAllRead) {
    EXPECT_EQ(whole(), "17\nindex 2 of 2\nmodel b.ini\nboard one\nsystem Swedish\nfeatures " +
                               partitions().tvconfigs +
                               "/tv.swedish\nplans 1 1 1 1 2 3 4 5 2 2 2 2 0 3 0 0\nAV\n");
}

TEST_F(Names, OfKeywordsAreRead) {
    const std::string normal = whole();
    for (const ChainKeyword& row : kChainKeywords) {
        EXPECT_NE(described(row.file, std::string(row.word), "UNREAD"), normal) << row.word;
    }
}

TEST_F(Names, OfElementsAndTheirAttributesAreRead) {
    const std::string normal = whole();
    for (const ElementRow& row : kElements) {
        EXPECT_NE(described(row.file, "(</?)" + std::string(row.name) + "\\b", "$1UNREAD"), normal)
                << row.name;
        for (const char* attribute : row.attributes) {
            if (attribute != nullptr) {
                EXPECT_NE(described(row.file, " " + std::string(attribute) + "=", " UNREAD="),
                          normal)
                        << row.name << " " << attribute;
            }
        }
    }
}

TEST_F(Names, OfCableTypesAreRead) {
    const std::string normal = whole();
    for (const std::string_view word : kCableWords) {
        EXPECT_NE(described(FileFormat::CHANNEL_MAP, "\"" + std::string(word), "\"UNREAD"), normal)
                << word;
    }
}

TEST_F(Names, OfPropertiesAreAllThatIsRead) {
    whole();
    // The flags below a master are read if the master is on.
    std::map<std::string, std::string> masters;
    for (const TvFlagRow& row : kTvFlags) {
        masters[row.key] = "true";
    }
    HeardProperties properties(masters);
    mDir.write("tvconfigs/tv.swedish", "");
    described(properties);
    const FrameworkSwitches switches(properties);
    std::set<std::string> known;
    for (const KnownProperty& row : kKnownProperties) {
        known.insert(row.key);
    }
    for (const TvSystemRow& row : kTvSystems) {
        known.insert(row.key);
    }
    for (const TvFlagRow& row : kTvFlags) {
        known.insert(row.key);
    }
    for (const FrameworkItemRow& row : kFrameworkItems) {
        if (row.property != nullptr) {
            known.insert(row.property);
        }
    }
    EXPECT_EQ(properties.heard(), known);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
