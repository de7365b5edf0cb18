// What a new product line has for its country.

#include "tools/mlktree/Starter.h"

namespace mlk::tree {

namespace {

constexpr const char* kSystems = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- What a TV system changes in a model. A change of country takes nothing back, so give all TV
     systems of this file the same items. An item counts only if the model has its key. -->
<CountryTvSysMapXML>/tvconfigs/tvsysmap/countries.xml</CountryTvSysMapXML>
<TvSystemConfigration>
    <TvSystem type="DVB_WEST">
        <!-- mlktree: allow country-replaces the country decides about subtitles -->
        <Item category="[LiveTV]" key="SubtitleDefault" value="off"/>
    </TvSystem>
</TvSystemConfigration>
)";

constexpr const char* kCountryMap = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- TV system and TV features of each country. A new set starts in the first one. A country takes
     the first block whose name contains its own: put NIGER before NIGERIA. -->
<COUNTRY_TVCONFIG_MAP>
    <COUNTRY_NAME>GERMANY</COUNTRY_NAME>
    <TV_SYSTEM>DVB_WEST</TV_SYSTEM>
    <TV_CONFIG>/tvconfigs/tv.config</TV_CONFIG>
</COUNTRY_TVCONFIG_MAP>
)";

constexpr const char* kPlanMap = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- The channel plans of each country: files of dtv/ and atv/. The files of all products spell
     ANTENA with one N. Further elements are DTV_CABLE, ATV_ANTENA and ATV_CABLE. -->
<COUNTRY_FREQ_MAP>
    <COUNTRY_NAME>GERMANY</COUNTRY_NAME>
    <DTV_ANTENA>dvbt_uhf</DTV_ANTENA>
</COUNTRY_FREQ_MAP>
)";

// Channels of 8 MHz from 470 to 694 MHz.
constexpr const char* kPlan = R"(// channel, bandwidth in Hz, frequency in kHz,
// label (4 characters at most), modulation.
// A line has 49 bytes at most.
21, 8000000, 474000, 21, DVB_AUTO
22, 8000000, 482000, 22, DVB_AUTO
23, 8000000, 490000, 23, DVB_AUTO
24, 8000000, 498000, 24, DVB_AUTO
25, 8000000, 506000, 25, DVB_AUTO
26, 8000000, 514000, 26, DVB_AUTO
27, 8000000, 522000, 27, DVB_AUTO
28, 8000000, 530000, 28, DVB_AUTO
29, 8000000, 538000, 29, DVB_AUTO
30, 8000000, 546000, 30, DVB_AUTO
31, 8000000, 554000, 31, DVB_AUTO
32, 8000000, 562000, 32, DVB_AUTO
33, 8000000, 570000, 33, DVB_AUTO
34, 8000000, 578000, 34, DVB_AUTO
35, 8000000, 586000, 35, DVB_AUTO
36, 8000000, 594000, 36, DVB_AUTO
37, 8000000, 602000, 37, DVB_AUTO
38, 8000000, 610000, 38, DVB_AUTO
39, 8000000, 618000, 39, DVB_AUTO
40, 8000000, 626000, 40, DVB_AUTO
41, 8000000, 634000, 41, DVB_AUTO
42, 8000000, 642000, 42, DVB_AUTO
43, 8000000, 650000, 43, DVB_AUTO
44, 8000000, 658000, 44, DVB_AUTO
45, 8000000, 666000, 45, DVB_AUTO
46, 8000000, 674000, 46, DVB_AUTO
47, 8000000, 682000, 47, DVB_AUTO
48, 8000000, 690000, 48, DVB_AUTO
)";

}  // namespace

std::vector<StarterFile> starterRegional() {
    return {
            {"tvconfigs/country/countries.txt", "GERMANY,DE\n"},
            {"tvconfigs/language/languages.txt", "ger,German\neng,English\n"},
            {"tvconfigs/tvsysmap/systems.xml", kSystems},
            {"tvconfigs/tvsysmap/countries.xml", kCountryMap},
            {"tvconfigs/freqtables/country_freq_map.xml", kPlanMap},
            {"tvconfigs/freqtables/dtv/dvbt_uhf", kPlan},
    };
}

}  // namespace mlk::tree
