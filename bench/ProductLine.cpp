#include "bench/ProductLine.h"

#include "regional/CountryTable.h"

namespace mlk::bench {

namespace {

using vendor::morlak::mlkconfigs::V1_0::implementation::kCountryNames;

constexpr const char* kFirstTvSystem = "DVB";
constexpr const char* kTvSystems[] = {kFirstTvSystem, "ATSC",       "ISDB",
                                      "DTMB",         "DVB_NORDIC", "ATV_ONLY"};

// After the known countries, unknown names: they count as countries, too.
std::string countryName(size_t index) {
    const size_t position = index + 1;  // the first name is no country
    return position < kCountryNames.size() ? std::string(kCountryNames[position])
                                           : "COUNTRY_" + std::to_string(position);
}

std::string element(const std::string& name, const std::string& text) {
    return "    <" + name + ">" + text + "</" + name + ">\n";
}

std::string tvSystems() {
    std::string text =
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<CountryTvSysMapXML>/tvconfigs/bench/countries.xml</CountryTvSysMapXML>\n"
            "<TvSystemConfigration>\n";
    const auto item = [&](const char* category, const char* key, const std::string& value) {
        text += std::string("        <Item category=\"") + category + "\" key=\"" + key +
                "\" value=\"" + value + "\"/>\n";
    };
    for (const char* system : kTvSystems) {
        text += std::string("    <TvSystem type=\"") + system + "\">\n";
        item("[LiveTV]", "SubtitleDefault", "off");
        item("[COUNTRY]", "TV_SYSTEM", system);
        text += "    </TvSystem>\n";
    }
    return text + "</TvSystemConfigration>\n";
}

std::string countryMap(size_t countries) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    for (size_t i = 0; i < countries; ++i) {
        text += "<COUNTRY_TVCONFIG_MAP>\n" + element("COUNTRY_NAME", countryName(i)) +
                element("TV_SYSTEM", kTvSystems[i % std::size(kTvSystems)]) +
                element("TV_CONFIG", "/tvconfigs/tv/tv_eu.config") + "</COUNTRY_TVCONFIG_MAP>\n";
    }
    return text;
}

std::string frequencyMap(size_t countries) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    for (size_t i = 0; i < countries; ++i) {
        text += "<COUNTRY_FREQ_MAP>\n" + element("COUNTRY_NAME", countryName(i)) +
                element("DTV_ANTENA", "freqtable_eu") +
                "    <DTV_CABLE TYPE=\"AUTO\">freqtable_dvbc_others</DTV_CABLE>\n" +
                element("ATV_ANTENA", "freqtable_atv_bg") +
                "    <ATV_CABLE TYPE=\"AUTO\">freqtable_atv_bg_cable</ATV_CABLE>\n"
                "</COUNTRY_FREQ_MAP>\n";
    }
    return text;
}

std::string countryList(size_t countries) {
    std::string text;
    for (size_t i = 0; i < countries; ++i) {
        text += countryName(i) + ",XX\n";
    }
    return text;
}

std::string systemFile(size_t models, const std::string& last) {
    std::string text = "[MODELS]\n";
    for (size_t i = 1; i <= models; ++i) {
        text += "Model_" + std::to_string(i) + " = \"" +
                (i == models ? last : "/tvconfigs/model/TRQ" + std::to_string(i) + ".ini") + "\"\n";
    }
    return text;
}

}  // namespace

void writeProductLine(testing::HostSet& set, const Size& size) {
    set.copyFrom(MLK_SAMPLES_DIR "/partitions");
    const testing::TempDir& dir = set.dir();
    dir.write("tvconfigs/customer.ini",
              "CUSTOMER_ID = BENCH\nSYS_INI     = \"/tvconfigs/system/bench.ini\"\n");
    dir.write("tvconfigs/system/bench.ini", systemFile(size.models, "/tvconfigs/model/BENCH.ini"));
    dir.write("tvconfigs/model/BENCH.ini", projectOfItems(size.items).text);
    dir.write("tvconfigs/bench/tvsys.xml", tvSystems());
    dir.write("tvconfigs/bench/countries.xml", countryMap(size.countries));
    dir.write("tvconfigs/bench/country.txt", countryList(size.countries));
    dir.write("tvconfigs/freqtables/country_freq_map.xml", frequencyMap(size.countries));
    dir.write("impdata/project_id.bin", "PROJECT_ID=" + std::to_string(size.models) + "\n");
    dir.write("tvdata/tvsysmap/country_id.bin", "COUNTRY_ID=1\n");
}

std::string writeProject(const testing::HostSet& set, const ProjectText& project, size_t models) {
    set.dir().write("tvconfigs/system.ini", systemFile(models, "/tvconfigs/project.ini"));
    set.dir().write("tvconfigs/project.ini", project.text);
    return set.dir().write("tvconfigs/customer.ini",
                           "CUSTOMER_ID=1\nSYS_INI=/tvconfigs/system.ini\n");
}

}  // namespace mlk::bench
