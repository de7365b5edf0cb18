#include "bench/TreeOfLine.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "regional/CountryTable.h"

namespace mlk::bench {

namespace {

namespace fs = std::filesystem;
using vendor::morlak::mlkconfigs::V1_0::implementation::kCountryNames;

// A plan of each kind for the country at a position, from those that the sample has.
struct Plans {
    const char* dtvAntenna;
    const char* dtvCable;
    const char* atvAntenna;
    const char* atvCable;
};
constexpr Plans kPlans[] = {
        {"freqtable_eu", "freqtable_dvbc_others", "freqtable_atv_bg", "freqtable_atv_bg_cable"},
        {"freqtable_atsc_air", "freqtable_atsc_cable_std", "freqtable_atv_m",
         "freqtable_atv_m_cable_std"},
        {"freqtable_isdb", "freqtable_dvbc_germany", "freqtable_atv_i", "freqtable_atv_bg_cable"},
        {"freqtable_dtmb", "freqtable_dvbc_china", "freqtable_atv_dk_china",
         "freqtable_atv_dk_cable_china"},
};

std::string textOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    if (!file) {
        throw std::runtime_error("cannot read " + path.string());
    }
    return text.str();
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const size_t at = text.find(from);
    if (at == std::string::npos) {
        throw std::runtime_error("the sample has no " + from);
    }
    return text.replace(at, from.size(), to);
}

std::string countryName(size_t index) {
    return std::string(kCountryNames[index + 1]);  // the first name is no country
}

std::string element(const std::string& name, const std::string& text) {
    return "    <" + name + ">" + text + "</" + name + ">\n";
}

std::string channelMap(size_t countries) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    for (size_t i = 0; i < countries; ++i) {
        const Plans& plans = kPlans[i % std::size(kPlans)];
        text += "<COUNTRY_FREQ_MAP>\n" + element("COUNTRY_NAME", countryName(i)) +
                element("DTV_ANTENA", plans.dtvAntenna) + "    <DTV_CABLE TYPE=\"AUTO\">" +
                plans.dtvCable + "</DTV_CABLE>\n" + element("ATV_ANTENA", plans.atvAntenna) +
                "    <ATV_CABLE TYPE=\"AUTO\">" + plans.atvCable +
                "</ATV_CABLE>\n</COUNTRY_FREQ_MAP>\n";
    }
    return text;
}

std::string countryMap(size_t countries) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    for (size_t i = 0; i < countries; ++i) {
        text += "<COUNTRY_TVCONFIG_MAP>\n" + element("COUNTRY_NAME", countryName(i)) +
                element("TV_SYSTEM", "DVB_CENTRAL") +
                element("TV_CONFIG", "/tvconfigs/tv/tv_eu.config") + "</COUNTRY_TVCONFIG_MAP>\n";
    }
    return text;
}

}  // namespace

void writeTree(const testing::TempDir& dir, const LineSize& size) {
    fs::copy(MLK_SAMPLES_DIR "/partitions", dir.path(), fs::copy_options::recursive);
    const fs::path folder = fs::path(dir.path()) / "tvconfigs";
    const std::string model = textOf(folder / "model/TRQ43_M2_EU.ini");
    const std::string board = textOf(folder / "board/skerry_b2.ini");
    const std::string system = textOf(folder / "system/tarnquill_skerry.ini");
    for (const char* const emptied : {"model", "board"}) {
        fs::remove_all(folder / emptied);
        fs::create_directory(folder / emptied);
    }
    std::string models;
    for (size_t i = 1; i <= size.models; ++i) {
        const std::string number = std::to_string(i);
        const std::string path = "model/M" + number + ".ini";
        models += "Model_" + number + " = \"/tvconfigs/" + path + "\"\n";
        dir.write("tvconfigs/" + path, replaced(model, "TRQ43-M2", "BENCH-" + number));
    }
    dir.write("tvconfigs/system/tarnquill_skerry.ini", models);
    for (size_t i = 1; i <= size.boards; ++i) {
        dir.write("tvconfigs/board/b" + std::to_string(i) + ".ini", board);
    }
    std::string list;
    for (size_t i = 0; i < size.countries; ++i) {
        list += countryName(i) + ",XX\n";
    }
    dir.write("tvconfigs/country/country_eu.txt", list);
    dir.write("tvconfigs/tvsysmap/countries_eu.xml", countryMap(size.countries));
    dir.write("tvconfigs/freqtables/country_freq_map.xml", channelMap(size.countries));
    dir.write("impdata/board_id.bin", "BOARD_ID=/tvconfigs/board/b1.ini\n");
    dir.write("impdata/project_id.bin", "PROJECT_ID=1\n");
    dir.write("tvdata/tvsysmap/country_id.bin", "COUNTRY_ID=0\n");
}

}  // namespace mlk::bench
