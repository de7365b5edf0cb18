#pragma once

#include <array>
#include <string_view>

#include "common/ConfigKey.h"
#include "common/FileFormat.h"
#include "common/ValueType.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** The item of the project store that the TV feature file of a country replaces. */
inline constexpr ConfigKey kTvConfigItem("[LiveTV]", "TvConfig");

/** The property that decides how much is logged of TV systems and countries. */
inline constexpr const char* kLogTvSystemsProperty = "persist.vendor.mlk.tvsysmap.debug";

// The saved country: a folder of tvdata, the file in it, and the word of its line.
inline constexpr const char* kCountryIdFolder = "/tvsysmap";
inline constexpr const char* kCountryIdFile = "/country_id.bin";
inline constexpr std::string_view kCountryIdKeyword = "COUNTRY_ID";

// The channel plans: the folder of a set that names none, on tvconfigs, and what lies in a folder.
inline constexpr const char* kDefaultPlansFolder = "/freqtables";
inline constexpr const char* kChannelMapFile = "/country_freq_map.xml";
inline constexpr const char* kDtvPlansFolder = "/dtv/";
inline constexpr const char* kAtvPlansFolder = "/atv/";

/** The elements of the XML files, by the names that the files of all products have. */
namespace element {

// TV system file
inline constexpr const char* kCountryMap = "CountryTvSysMapXML";
inline constexpr const char* kTvSystems = "TvSystemConfigration";
inline constexpr const char* kTvSystem = "TvSystem";
inline constexpr const char* kItem = "Item";
// country map
inline constexpr const char* kCountry = "COUNTRY_TVCONFIG_MAP";
inline constexpr const char* kSystemOfCountry = "TV_SYSTEM";
inline constexpr const char* kFeaturesOfCountry = "TV_CONFIG";
// map of channel plans
inline constexpr const char* kPlansOfCountry = "COUNTRY_FREQ_MAP";
inline constexpr const char* kDtvAntenna = "DTV_ANTENA";
inline constexpr const char* kAtvAntenna = "ATV_ANTENA";
inline constexpr const char* kDtvCable = "DTV_CABLE";
inline constexpr const char* kAtvCable = "ATV_CABLE";
// both maps
inline constexpr const char* kCountryName = "COUNTRY_NAME";

}  // namespace element

/** The attributes of these elements. */
namespace attribute {

inline constexpr const char* kType = "type";
inline constexpr const char* kCategory = "category";
inline constexpr const char* kKey = "key";
inline constexpr const char* kValue = "value";
inline constexpr const char* kCableType = "TYPE";

}  // namespace attribute

/** What the type of a cable plan begins with. A plan without a type counts as AUTO. */
namespace cable {

inline constexpr std::string_view kAuto = "AUTO";
inline constexpr std::string_view kStd = "STD";
inline constexpr std::string_view kHrc = "HRC";
inline constexpr std::string_view kIrc = "IRC";

}  // namespace cable

/** All of them. */
inline constexpr std::array<std::string_view, 4> kCableWords = {cable::kAuto, cable::kStd,
                                                                cable::kHrc, cable::kIrc};

/** One element of an XML file. */
struct ElementRow {
    FileFormat file;
    const char* parent; /**< null for an element of the top level */
    const char* name;
    std::array<const char*, 3> attributes; /**< null after the last */
    ValueType type;                        /**< of its text, or of its last attribute */
    FileFormat names;                      /**< the format of the file that its text names */
    const char* note;                      /**< what it is */
};

/** All elements that the service reads. */
inline constexpr ElementRow kElements[] = {
        {FileFormat::TV_SYSTEMS,
         nullptr,
         element::kCountryMap,
         {},
         ValueType::PATH,
         FileFormat::COUNTRY_MAP,
         ""},
        {FileFormat::TV_SYSTEMS,
         nullptr,
         element::kTvSystems,
         {},
         ValueType::TEXT,
         FileFormat::NONE,
         "holds the TV systems"},
        {FileFormat::TV_SYSTEMS,
         element::kTvSystems,
         element::kTvSystem,
         {attribute::kType},
         ValueType::TEXT,
         FileFormat::NONE,
         "`TV_SYSTEM` of the country map refers to its `type`"},
        {FileFormat::TV_SYSTEMS,
         element::kTvSystem,
         element::kItem,
         {attribute::kCategory, attribute::kKey, attribute::kValue},
         ValueType::TEXT,
         FileFormat::NONE,
         "replaces an item of the project store; all three attributes are needed"},
        {FileFormat::COUNTRY_MAP,
         nullptr,
         element::kCountry,
         {},
         ValueType::TEXT,
         FileFormat::NONE,
         "holds a country"},
        {FileFormat::COUNTRY_MAP,
         element::kCountry,
         element::kCountryName,
         {},
         ValueType::TEXT,
         FileFormat::NONE,
         "name of the country"},
        {FileFormat::COUNTRY_MAP,
         element::kCountry,
         element::kSystemOfCountry,
         {},
         ValueType::TEXT,
         FileFormat::NONE,
         "`type` of a TV system"},
        {FileFormat::COUNTRY_MAP,
         element::kCountry,
         element::kFeaturesOfCountry,
         {},
         ValueType::PATH,
         FileFormat::TV_FEATURES,
         "replaces `[LiveTV]` `TvConfig`"},
        {FileFormat::CHANNEL_MAP,
         nullptr,
         element::kPlansOfCountry,
         {},
         ValueType::TEXT,
         FileFormat::NONE,
         "holds a country"},
        {FileFormat::CHANNEL_MAP,
         element::kPlansOfCountry,
         element::kCountryName,
         {},
         ValueType::TEXT,
         FileFormat::NONE,
         "name of the country"},
        {FileFormat::CHANNEL_MAP,
         element::kPlansOfCountry,
         element::kDtvAntenna,
         {},
         ValueType::PATH,
         FileFormat::CHANNEL_PLAN,
         "in the folder `dtv`"},
        {FileFormat::CHANNEL_MAP,
         element::kPlansOfCountry,
         element::kAtvAntenna,
         {},
         ValueType::PATH,
         FileFormat::CHANNEL_PLAN,
         "in the folder `atv`"},
        {FileFormat::CHANNEL_MAP,
         element::kPlansOfCountry,
         element::kDtvCable,
         {attribute::kCableType},
         ValueType::PATH,
         FileFormat::CHANNEL_PLAN,
         "in the folder `dtv`; `TYPE` begins with `AUTO`, `STD`, `HRC` or `IRC`, and is `AUTO` if "
         "it is missing"},
        {FileFormat::CHANNEL_MAP,
         element::kPlansOfCountry,
         element::kAtvCable,
         {attribute::kCableType},
         ValueType::PATH,
         FileFormat::CHANNEL_PLAN,
         "in the folder `atv`; `TYPE` begins with `AUTO`, `STD`, `HRC` or `IRC`, and is `AUTO` if "
         "it is missing"},
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
