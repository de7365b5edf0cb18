#include "tools/mlkctl/ShowRows.h"

#include <vendor/morlak/mlkconfigs/1.0/IMlkFrameworkConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkTvConfigs.h>

#include "tools/mlkctl/Ask.h"
#include "tools/mlkctl/CountryRows.h"
#include "tools/mlkctl/Dump.h"

namespace mlk::ctl {

namespace {

using V1_0::CommonPath;
using V1_0::ConfigType;
using V1_0::IMlkFrameworkConfigs;
using V1_0::IMlkProjectConfigs;
using V1_0::IMlkTvConfigs;

std::string textOf(const hidl_string& text) {
    return {text.c_str(), text.size()};
}

template <typename Optional>
ShowValue valueOf(const Optional& answer) {
    if (!answer.success) {
        return NoValue{"(refused)"};
    }
    if constexpr (std::is_same_v<Optional, V1_0::OptionalString>) {
        return textOf(answer.value);
    } else {
        return answer.value;
    }
}

ShowValue valueOf(const hidl_vec<hidl_string>& answer) {
    std::vector<std::string> list;
    for (const hidl_string& text : answer) {
        list.push_back(textOf(text));
    }
    return list;
}

const Interface& tableOf(Type<IMlkProjectConfigs>) {
    return projectInterface();
}
const Interface& tableOf(Type<IMlkTvConfigs>) {
    return tvInterface();
}
const Interface& tableOf(Type<IMlkFrameworkConfigs>) {
    return frameworkInterface();
}

// The question that calls a method with these arguments.
template <typename I, typename... Params, typename... Arguments>
ShowQuestion answer(Return<void> (I::*pointer)(Params...), Arguments... arguments) {
    return {&tableOf(Type<I>()),
            [=](IBase& object) { return valueOf(ask(object, pointer, arguments...)); }};
}

// The names of the features that are switched on, or off.
ShowQuestion features(bool on) {
    return {&tvInterface(), [=](IBase& object) -> ShowValue {
                std::vector<std::string> list;
                bool known = false;
                for (const auto feature : ::android::hardware::hidl_enum_range<ConfigType>()) {
                    const ShowValue value = answer(&IMlkTvConfigs::getFlag, feature).ask(object);
                    const bool* flag = std::get_if<bool>(&value);
                    if (flag == nullptr) {
                        continue;
                    }
                    known = true;
                    if (*flag == on) {
                        list.push_back(toString(feature));
                    }
                }
                if (!known) {
                    return NoValue{"(refused)"};
                }
                return Names{list};
            }};
}

// The files of the EDIDs of a port, by their versions.
ShowQuestion edids(int32_t port) {
    return {&projectInterface(), [port](IBase& object) -> ShowValue {
                Files files;
                for (const auto version : ::android::hardware::hidl_enum_range<V1_0::EdidVer>()) {
                    // EDID_2P0
                    const std::string name = toString(version).substr(5);
                    files.emplace_back(
                            name,
                            textOf(ask(object, &IMlkProjectConfigs::getHDMIEdidPath, port, version)
                                           .value));
                }
                return files;
            }};
}

ShowQuestion item(const char* section, const char* key) {
    return answer(&IMlkProjectConfigs::getConfig, V1_0::ProjectConfigKey{section, key});
}

ShowQuestion languages() {
    return {&projectInterface(), [](IBase& object) -> ShowValue {
                Names names;
                for (const hidl_string& name : ask(object, &IMlkProjectConfigs::getLanguageList)) {
                    names.list.push_back(textOf(name));
                }
                return names;
            }};
}

// A file that only the dump names.
ShowQuestion dumped(std::string DumpedSet::*file) {
    return {&projectInterface(),
            [file](IBase& object) -> ShowValue { return dumpedSet(object).*file; }};
}

std::vector<ShowRow> makeRows() {
    using P = IMlkProjectConfigs;
    using F = IMlkFrameworkConfigs;
    return {
            {"Project", "Name", "name", answer(&P::getProjectName)},
            {"Project", "Index", "index", answer(&P::getProjectId)},
            {"Project", "Highest index", "highestIndex", answer(&P::getProjectMaxIdx)},
            {"Project", "Customer", "customer", answer(&P::getCustomerId)},
            {"Project", "Client type", "clientType", answer(&P::getClientType)},
            {"Project", "Region", "region", answer(&P::getRegionName)},
            {"Project", "Model file", "modelFile", dumped(&DumpedSet::projectFile)},
            {"Project", "Board file", "boardFile", dumped(&DumpedSet::boardFile)},
            {"Project", "Project files", "projectFiles", answer(&P::getProjectIniList)},

            {"Picture", "Panel", "panel", answer(&P::getPanelName)},
            {"Picture", "Picture quality", "pictureQuality", answer(&P::getPQPath)},
            {"Picture", "Overscan", "overscan", answer(&P::getOverscanPath)},
            {"Picture", "Spread spectrum", "spreadSpectrum", answer(&P::getSSCPath)},

            {"Sound", "Sound quality", "soundQuality", answer(&P::getAQPath)},
            {"Sound", "Volume curve", "volumeCurve", answer(&P::getVolumeCurve)},
            {"Sound", "Equaliser 0", "equaliser0", answer(&P::getEQPath, 0)},
            {"Sound", "Equaliser 1", "equaliser1", answer(&P::getEQPath, 1)},
            {"Sound", "Amplifier", "amplifier", answer(&P::getAMPSelection, CommonPath::AMP_MAIN)},
            {"Sound", "Address", "amplifierAddress", answer(&P::getAMPAddr, 0)},
            {"Sound", "Second amplifier", "secondAmplifier",
             answer(&P::getAMPSelection, CommonPath::AMP_SUB)},
            {"Sound", "Second address", "secondAmplifierAddress", answer(&P::getAMPAddr, 1)},

            {"Sound", "Panel's delays", "panelDelays", item("[AUDIO]", "AUDIO_CONFIG_PATH")},
            {"Sound", "IC's delays", "icDelays", item("[AUDIO]", "AUDIO_CONFIG_IC_PATH")},
            {"Sound", "AVR's delays", "avrDelays", item("[AUDIO]", "AUDIO_CONFIG_AVR_PATH")},

            {"HDMI", "EDID of port 0", "edid0", edids(0)},
            {"HDMI", "EDID of port 1", "edid1", edids(1)},
            {"HDMI", "EDID of port 2", "edid2", edids(2)},
            {"HDMI", "EDID of port 3", "edid3", edids(3)},
            {"HDMI", "HDCP 1.x", "hdcp1", item("[HDCP_KEY_1X]", "HDCP_KEY_File")},
            {"HDMI", "HDCP 2.x", "hdcp2", item("[HDCP_KEY_2X]", "HDCP_KEY_File")},

            {"Reception", "Inputs", "inputs", answer(&P::getInputSource)},
            {"Reception", "Tuner type", "tunerType", answer(&P::getTunerType)},
            {"Reception", "Tuner 0", "tuner0", answer(&P::getTunerConfig, 0)},
            {"Reception", "Tuner 1", "tuner1", answer(&P::getTunerConfig, 1)},
            {"Reception", "Channel database", "channelDatabase",
             answer(&P::getTvChannelDatabasePath)},
            {"Reception", "Recording", "recording", answer(&P::getDPVREnabled)},
            {"Reception", "HbbTV", "hbbtv", answer(&P::getHBBTVEnabled)},
            {"Reception", "Features on", "featuresOn", features(true)},
            {"Reception", "Features off", "featuresOff", features(false)},

            {"Country", "Name", "name", countryName()},
            {"Country", "Number", "number", countryNumber()},
            {"Country", "TV system", "tvSystem", countryTvSystem()},
            {"Country", "TV configuration", "tvConfiguration", item("[LiveTV]", "TvConfig")},
            {"Country", "Channels", "channels", countryChannels()},
            {"Country", "Languages", "languages", languages()},

            {"Power", "Mode at power-on", "powerOnMode", answer(&P::getPowerOnMode)},
            {"Power", "Logo", "logo", answer(&P::getPowerLogoPath)},
            {"Power", "Boot animation", "bootAnimation", answer(&P::getBootAnimationPath)},
            {"Power", "Suspend to RAM", "suspendToRam", answer(&F::strEnabled)},
            {"Power", "Suspend forced", "suspendForced", answer(&F::getForceStrEnabled)},
            {"Power", "Wake on wireless", "wakeOnWireless", answer(&F::getWowEnabled)},

            {"Remote", "Configuration", "configuration", answer(&P::getIRConfig)},
            {"Remote", "Key filter", "keyFilter", answer(&P::getIRFilter)},

            {"Partitions", "tvconfigs", "tvconfigs", answer(&P::getTvconfigsPath)},
            {"Partitions", "tvdata", "tvdata", answer(&P::getTvdataPath)},
            {"Partitions", "impdata", "impdata", answer(&P::getImpdataPath)},
    };
}

}  // namespace

const std::vector<ShowRow>& showRows() {
    static const std::vector<ShowRow> rows = makeRows();
    return rows;
}

}  // namespace mlk::ctl
