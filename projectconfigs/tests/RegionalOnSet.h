#pragma once

#include <string>

#include "projectconfigs/tests/ServiceOnSet.h"
#include "regional/tests/RegionalFiles.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** A set whose project names regional files. Its country is GERMANY. */
class RegionalOnSet : public ServiceOnSet {
  protected:
    RegionalOnSet() {
        RegionalPeer::forget();
        write("tvconfigs/tvsys.xml",
              "<CountryTvSysMapXML>/tvconfigs/countries.xml</CountryTvSysMapXML>\n"
              "<TvSystemConfigration>\n"
              "<TvSystem type=\"DVB\">\n" +
                      item("[LiveTV]", "Hbbtv", "true") + item("[S]", "absent", "x") +
                      item("[S]", "data", "/tvdata/dvb") +
                      "</TvSystem>\n"
                      "<TvSystem type=\"ATSC\">\n" +
                      item("[LiveTV]", "Hbbtv", "false") + item("[S]", "data", "/tvdata/atsc") +
                      "</TvSystem>\n"
                      "</TvSystemConfigration>\n");
        write("tvconfigs/countries.xml", country("GERMANY", "DVB", "/tvconfigs/tv/eu.config") +
                                                 country("USA", "ATSC", "/tvconfigs/tv/na.config"));
        write("tvconfigs/menu.txt", "GERMANY,DE\n\nUSA,extra\nDEFAULT\n");
        write("tvconfigs/cltv.txt", "USA\n");
        write("tvconfigs/languages.txt", "eng,English\nger,German\n");
        write("tvconfigs/freqtables/country_freq_map.xml",
              "<COUNTRY_FREQ_MAP><COUNTRY_NAME>USA</COUNTRY_NAME><DTV_ANTENA>air</DTV_ANTENA>"
              "<DTV_CABLE TYPE=\"HRC\">hrc</DTV_CABLE><ATV_ANTENA></ATV_ANTENA>"
              "</COUNTRY_FREQ_MAP>\n");
        write("tvconfigs/freqtables/dtv/air",
              "2 6000000 57000 C2 VSB8\n65535 0 63000 LONGER NEWEST\n");
        write("tvconfigs/freqtables/dtv/hrc", "// nothing yet\n");
        project(std::string("[COUNTRY]\ntvSysMap=\"/tvconfigs/tvsys.xml\"\n") + kOtherItems);
    }
    ~RegionalOnSet() override { RegionalPeer::forget(); }

    // The items that the country changes, and those that name the other files.
    static constexpr const char* kOtherItems =
            "COUNTRY_PATH=\"/tvconfigs/menu.txt\"\n"
            "[LiveTV]\nTvConfig=/tvconfigs/tv/model.config\nHbbtv=\n"
            "LaunchCLTVByCountry=/tvconfigs/cltv.txt\n"
            "[S]\ndata=model\n"
            "[TV_LANGUAGE]\nLANGUAGE_PATH=\"/tvconfigs/languages.txt\"\n"
            "[FREQTABLE]\nFREQ_TABLE_PATH=\"/tvconfigs/freqtables\"\n";
    static constexpr int32_t kGermany = 14;
    static constexpr int32_t kUsa = 44;

    static std::string item(const std::string& category, const std::string& key,
                            const std::string& value) {
        return "<Item category=\"" + category + "\" key=\"" + key + "\" value=\"" + value +
               "\"/>\n";
    }
    static std::string country(const std::string& name, const std::string& system,
                               const std::string& config) {
        return "<COUNTRY_TVCONFIG_MAP><COUNTRY_NAME>" + name + "</COUNTRY_NAME><TV_SYSTEM>" +
               system + "</TV_SYSTEM><TV_CONFIG>" + config +
               "</TV_CONFIG></COUNTRY_TVCONFIG_MAP>\n";
    }
    std::string config(const char* category, const char* key) {
        return text(asked(&IMlkProjectConfigs::getConfig, ProjectConfigKey{category, key}));
    }
    /** The path of the TV feature file, without its partition. */
    std::string tvConfig() {
        const std::string path = config("[LiveTV]", "TvConfig");
        EXPECT_EQ(path.rfind(mSet.tvconfigs(), 0), 0U) << path;
        return path.substr(mSet.tvconfigs().size());
    }
    /** The answer of setCountryId, in the form of flag(). */
    std::string setCountry(int32_t country) {
        return flag(asked(&IMlkProjectConfigs::setCountryId, country));
    }
    std::string countryIdPath() const { return mSet.tvdata() + "/tvsysmap/country_id.bin"; }
    std::string countryId() const { return mSet.dir().read("tvdata/tvsysmap/country_id.bin"); }
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
