#pragma once

#include <sstream>
#include <string>

#include "regional/TvSysMapCfgHolder.h"
#include "regional/tests/RegionalFiles.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** A set with a TV system file, a country map and a country. */
class TvSysMapFiles : public RegionalFiles {
  public:
    /** Writes a TV system file with these systems, which names the map of writeCountries. */
    std::string writeSystems(const std::string& systems) const {
        return writeSystemFile("/tvconfigs/countries.xml", systems);
    }
    std::string writeSystemFile(const std::string& mapPath, const std::string& systems) const {
        return write("tvsys.xml", "<CountryTvSysMapXML>" + mapPath +
                                          "</CountryTvSysMapXML>\n<TvSystemConfigration>\n" +
                                          systems + "</TvSystemConfigration>\n");
    }
    std::string writeCountries(const std::string& blocks) const {
        return write("countries.xml", blocks);
    }
    static std::string country(const std::string& name, const std::string& system,
                               const std::string& config) {
        return "<COUNTRY_TVCONFIG_MAP><COUNTRY_NAME>" + name + "</COUNTRY_NAME><TV_SYSTEM>" +
               system + "</TV_SYSTEM><TV_CONFIG>" + config +
               "</TV_CONFIG></COUNTRY_TVCONFIG_MAP>\n";
    }
    static std::string system(const std::string& type, const std::string& items) {
        return "<TvSystem type=\"" + type + "\">\n" + items + "</TvSystem>\n";
    }
    static std::string item(const std::string& category, const std::string& key,
                            const std::string& value) {
        return "<Item category=\"" + category + "\" key=\"" + key + "\" value=\"" + value +
               "\"/>\n";
    }
    /** Writes two systems and two countries, GERMANY first. */
    std::string writeBoth() const {
        writeCountries(country("GERMANY", "DVB", "/tvconfigs/tv/eu.config") +
                       country("USA", "ATSC", "/tvconfigs/tv/na.config"));
        return writeSystems(
                system("DVB", item("[LiveTV]", "Hbbtv", "true") + item("[A]", "k", "/tvdata/x")) +
                system("ATSC", item("[LiveTV]", "Hbbtv", "false")));
    }
    std::string folder() const { return set().tvdata() + "/tvsysmap"; }
    std::string file() const { return folder() + "/country_id.bin"; }
    void writeCountryId(const std::string& text) const {
        set().dir().write("tvdata/tvsysmap/country_id.bin", text);
    }
    std::string countryId() const { return set().dir().read("tvdata/tvsysmap/country_id.bin"); }
    /** The items as "[A]:k=v;[B]:l=w;". */
    static std::string textOf(const ItemStore& items) {
        std::ostringstream text;
        for (const ItemStore::Item item : items.inOrder()) {
            text << items.sectionOf(item) << ":" << items.keyOf(item) << "=" << items.valueOf(item)
                 << ";";
        }
        return text.str();
    }
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
