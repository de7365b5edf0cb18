// TV systems and countries: the TV system file, the country map "/tvconfigs/countries.xml" and
// "country_id.bin".

#include <cstdlib>
#include <cstring>

#include "host/testing/HostSet.h"
#include "host/testing/fuzz/Fuzzing.h"
#include "regional/TvSysMapCfgHolder.h"
#include "regional/testing/PlainRegional.h"
#include "regional/tests/RegionalFiles.h"

using namespace vendor::morlak::mlkconfigs::V1_0::implementation;
namespace fuzzing = mlk::fuzzing;

namespace {

struct Set {
    Set() { set.setProperty("persist.vendor.mlk.tvsysmap.debug", "1"); }
    mlk::testing::HostSet set;
    const std::string systems = set.tvconfigs() + "/systems.xml";
    const std::string countries = set.tvconfigs() + "/countries.xml";
    const std::string countryId = set.dir().mkdir("tvdata/tvsysmap") + "/country_id.bin";
};

std::string textOf(const plain::Items& items) {
    std::string text;
    for (const auto& [name, value] : items) {
        text += name.first + ":" + name.second + "=" + value + "\n";
    }
    return text;
}

plain::Items itemsOf(const ItemStore& store) {
    plain::Items items;
    for (const ItemStore::Item item : store.inOrder()) {
        items[{std::string(store.sectionOf(item)), std::string(store.keyOf(item))}] =
                store.valueOf(item);
    }
    return items;
}

// The saved country; -1 when the file has none.
int32_t savedCountry(std::string text) {
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        std::string line = text.substr(0, end);
        text.erase(0, end + 1);
        line.resize(std::min<size_t>(line.size(), 255));
        line = line.c_str();
        if (line.find("COUNTRY_ID") != std::string::npos) {
            const size_t equals = line.find('=');
            return equals == std::string::npos ? -1 : atoi(line.c_str() + equals + 1);
        }
    }
    return -1;
}

void compare(const plain::TvSystems& plainly, int32_t asked, int32_t meant, plain::Names& names,
             const std::string& file) {
    TvSysMapCfgHolder holder = processHolder();
    const plain::Items items = itemsOf(holder.getConfigs(file, _tv_country{asked}));
    const plain::Items expected = meant == -1 ? plain::Items{} : plainly.itemsOf(meant, names);
    fuzzing::requireEqual("the items of a country", textOf(items), textOf(expected));
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const Set set;
    RegionalPeer::forget();
    const fuzzing::Files files(data, size, 3);
    files.put(0, set.systems);
    files.put(1, set.countries);
    files.put(2, set.countryId);
    const plain::TvSystems plainly{set.systems, set.set.tvconfigs(), set.set.tvdata()};
    plain::Names names = plain::countries();
    for (const int32_t country : {14, 0, 170}) {
        compare(plainly, country, country, names, set.systems);
    }
    const bool isLoaded = processHolder().loadConfigXmlFile(set.systems);
    const bool isSaved = files.has(2);
    const int32_t saved = isSaved ? savedCountry(files.text(2)) : plainly.firstCountry(names);
    compare(plainly, -1, saved, names, set.systems);
    if (isLoaded && !isSaved && saved != -1) {
        fuzzing::requireEqual("the country of a new set", fuzzing::readFile(set.countryId),
                              "COUNTRY_ID=" + std::to_string(saved) + "\n");
    }
    TvSysMapCfgHolder holder = processHolder();
    fuzzing::require(holder.saveCountryId(_tv_country{44}), "a country can be saved");
    holder.parseCountryId();
    fuzzing::require(holder.currentCountry() == 44, "a saved country is read again");
    return 0;
}
