// country_freq_map.xml.

#include "host/testing/HostSet.h"
#include "host/testing/fuzz/Fuzzing.h"
#include "regional/CountryFreqMapParse.h"
#include "regional/tests/RegionalFiles.h"

using namespace vendor::morlak::mlkconfigs::V1_0::implementation;
namespace fuzzing = mlk::fuzzing;
using vendor::morlak::mlkconfigs::V1_0::AtscCableType;
using vendor::morlak::mlkconfigs::V1_0::FreqTableType;

namespace {

constexpr FreqTableType kTypes[] = {FreqTableType::DTV_ANTENNA, FreqTableType::DTV_CABLE,
                                    FreqTableType::ATV_ANTENNA, FreqTableType::ATV_CABLE,
                                    FreqTableType{7}};
constexpr AtscCableType kCables[] = {AtscCableType::AUTO, AtscCableType::STD, AtscCableType::HRC,
                                     AtscCableType::IRC, AtscCableType{9}};

// Escapes a text so that a reader of XML gets exactly this text, including blanks at its ends. The
// result is never empty: an empty element would have no text.
std::string escaped(const std::string& text) {
    std::string result = text.empty() ? "&#0;" : "";
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool isPlain = isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c < 0;
        result += isPlain ? std::string(1, c)
                          : "&#" + std::to_string(static_cast<unsigned char>(c)) + ";";
    }
    return result;
}

std::string element(const std::string& name, const std::string& attribute,
                    const std::string& text) {
    return "<" + name + attribute + ">" + escaped(text) + "</" + name + ">";
}

std::string cables(const char* name, const CountryFreqMapEntry::CableTables& tables) {
    const char* const words[] = {"AUTO", "STD", "HRC", "IRC"};
    std::string text;
    for (const auto& [type, table] : tables) {
        text += element(name, std::string(" TYPE=\"") + words[static_cast<int>(type)] + "\"",
                        table);
    }
    return text;
}

std::string xmlOf(const std::vector<CountryFreqMapEntry>& entries) {
    std::string text;
    for (const CountryFreqMapEntry& entry : entries) {
        text += "<COUNTRY_FREQ_MAP>" + element("COUNTRY_NAME", "", entry.countryName) +
                element("DTV_ANTENA", "", entry.dtvAntenna) + cables("DTV_CABLE", entry.dtvCable) +
                element("ATV_ANTENA", "", entry.atvAntenna) + cables("ATV_CABLE", entry.atvCable) +
                "</COUNTRY_FREQ_MAP>\n";
    }
    return text;
}

// The entries' table for a country, found by a walk over all entries.
bool lookUp(const std::vector<CountryFreqMapEntry>& entries, const std::string& country,
            FreqTableType type, AtscCableType cable, std::string& name) {
    bool found = false;
    for (const CountryFreqMapEntry& entry : entries) {
        if (entry.countryName != country) {
            continue;
        }
        if (type == FreqTableType::DTV_ANTENNA || type == FreqTableType::ATV_ANTENNA) {
            name = type == FreqTableType::DTV_ANTENNA ? entry.dtvAntenna : entry.atvAntenna;
            found = true;
        }
        const auto& tables = type == FreqTableType::DTV_CABLE ? entry.dtvCable : entry.atvCable;
        const bool isCable = type == FreqTableType::DTV_CABLE || type == FreqTableType::ATV_CABLE;
        if (isCable && tables.count(cable) != 0) {
            name = tables.at(cable);
            found = true;
        }
    }
    return found;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const mlk::testing::HostSet set;
    static const std::string folder = set.dir().mkdir("tvconfigs/freqtables");
    static const std::string path = folder + "/country_freq_map.xml";
    RegionalPeer::forget();
    fuzzing::writeFile(path, {reinterpret_cast<const char*>(data), size});

    CountryFreqMapParse& map = CountryFreqMapParse::GetInstance();
    std::string name = "untouched";
    const bool first = map.GetFreqTableNameByCountry("", _tv_country{14}, FreqTableType::DTV_CABLE,
                                                     AtscCableType::AUTO, name);
    const std::vector<CountryFreqMapEntry> entries = RegionalPeer::entries();
    if (!entries.empty()) {
        std::string expected = "untouched";
        const bool found =
                lookUp(entries, "GERMANY", FreqTableType::DTV_CABLE, AtscCableType::AUTO, expected);
        fuzzing::require(first == found, "the first lookup finds what was loaded");
        fuzzing::requireEqual("the name of a table", name, expected);
    }
    for (size_t i = 0; i < entries.size() && i < 4; ++i) {
        const std::string& country = entries[i].countryName;
        for (const FreqTableType type : kTypes) {
            for (const AtscCableType cable : kCables) {
                std::string actual = "none";
                std::string expected = "none";
                const bool found = lookUp(entries, country, type, cable, expected);
                fuzzing::require(
                        map.GetFreqTableNameByCountryName(country, type, cable, actual) == found,
                        "a lookup finds what was loaded");
                fuzzing::requireEqual("the name of a table", actual, expected);
            }
        }
    }
    const std::string written = xmlOf(entries);
    fuzzing::writeFile(path, written);
    // The escaped text may have too many character references to be read again.
    if (!entries.empty() && written.size() < 20000 && map.loadCountryFreqMapXML()) {
        fuzzing::requireEqual("the map, written and read again", xmlOf(RegionalPeer::entries()),
                              written);
    }
    return 0;
}
