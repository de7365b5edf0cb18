#include "service/tests/RandomArguments.h"

#include <limits>

namespace vendor::morlak::mlkconfigs::V1_0 {

namespace {

constexpr size_t kLongText = 3000;
constexpr int32_t kNumbers[] = {-1,
                                0,
                                1,
                                2,
                                3,
                                4,
                                7,
                                14,
                                25,
                                26,
                                29,
                                45,
                                99,
                                185,
                                186,
                                255,
                                256,
                                std::numeric_limits<int32_t>::min(),
                                std::numeric_limits<int32_t>::max()};
const std::vector<std::string> kCategories = {"[PANEL]",  "[LiveTV]", "[AUDIO]", "[ARC]", "[MIC]",
                                              "[KEYPAD]", "[CUSTOM]", "LiveTV",  ""};
const std::vector<std::string> kKeys = {"m_pPanelName", "TvConfig",   "AUDIO_CONFIG_PATH",
                                        "HDMI_DELAY",   "MIC_VOLUME", "KEY_COUNT",
                                        "VENDOR_CODE",  "none",       ""};

}  // namespace

RandomArguments::RandomArguments(unsigned int seed, const std::string& tvconfigs)
    : mRandom(seed),
      mTexts{"",
             "ARC",
             "0EC0DE",
             "Orlan900",
             "[PANEL]",
             "\xff\"%s%n\n",
             std::string("NUL\0 within", 11),
             std::string(kLongText, 'x'),
             "/nothing/there",
             tvconfigs,
             tvconfigs + "/customer.ini",
             '"' + tvconfigs + "/customer.ini\"",
             '"' + tvconfigs,
             tvconfigs + "/tv/tv_eu.config",
             tvconfigs + "/tv/tv_na.config",
             tvconfigs + "/freqtables/country_freq_map.xml"} {}

void RandomArguments::operator()(int32_t& argument) {
    argument = kNumbers[below(std::size(kNumbers))];
}

void RandomArguments::operator()(::android::hardware::hidl_string& argument) {
    argument = oneOf(mTexts);
}

void RandomArguments::operator()(ProjectConfigKey& argument) {
    argument.category = oneOf(kCategories);
    argument.key = oneOf(kKeys);
}

}  // namespace vendor::morlak::mlkconfigs::V1_0
