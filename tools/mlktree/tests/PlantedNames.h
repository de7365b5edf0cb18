// Short names for the rows of planted mistakes.
#pragma once

#include "tools/mlktree/tests/PlantedMistakes.h"

namespace mlk::tree {

inline constexpr auto kReplace = Planting::REPLACE;
inline constexpr auto kAppend = Planting::APPEND;
inline constexpr auto kWhole = Planting::WHOLE;
inline constexpr auto kRemove = Planting::REMOVE;
inline constexpr auto kUtf16 = Planting::UTF16;

// Files of the sample.
inline constexpr const char* kCustomer = "tvconfigs/customer.ini";
inline constexpr const char* kSystem = "tvconfigs/system/tarnquill_skerry.ini";
inline constexpr const char* kModel = "tvconfigs/model/TRQ43_M2_EU.ini";
inline constexpr const char* kOther = "tvconfigs/model/TRQ50_M2_NA.ini";
inline constexpr const char* kBoard = "tvconfigs/board/skerry_b2.ini";
inline constexpr const char* kPanel = "tvconfigs/audio/panel_osmr_uhd60.ini";
inline constexpr const char* kKeys = "tvconfigs/keys/keys_joystick.ini";
inline constexpr const char* kFeatures = "tvconfigs/tv/tv_eu.config";
inline constexpr const char* kList = "tvconfigs/country/country_eu.txt";
inline constexpr const char* kCountries = "tvconfigs/tvsysmap/countries_eu.xml";
inline constexpr const char* kTvSystems = "tvconfigs/tvsysmap/tvsys_eu.xml";
inline constexpr const char* kPlanMap = "tvconfigs/freqtables/country_freq_map.xml";
inline constexpr const char* kPlan = "tvconfigs/freqtables/dtv/freqtable_eu";
inline constexpr const char* kProjectId = "impdata/project_id.bin";
inline constexpr const char* kBoardId = "impdata/board_id.bin";
inline constexpr const char* kAvr = "tvconfigs/audio/avr_default.ini";
inline constexpr const char* kKaraoke = "tvconfigs/karaoke/karaoke_home.ini";
inline constexpr const char* kLanguages = "tvconfigs/language/language_eu.txt";
inline constexpr const char* kCountryId = "tvdata/tvsysmap/country_id.bin";

}  // namespace mlk::tree
