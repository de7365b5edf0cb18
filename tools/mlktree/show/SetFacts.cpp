#include "tools/mlktree/show/SetFacts.h"

#include <functional>

#include "common/Decimal.h"
#include "common/Paths.h"
#include "projectconfigs/KnownItems.h"
#include "projectconfigs/ProjectID.h"
#include "projectconfigs/ProjectItems.h"
#include "tools/mlktree/set/SetCountry.h"
#include "tools/mlktree/set/SetFeatures.h"
#include "tools/mlktree/set/SetProduct.h"
#include "tvconfigs/TvConfigItems.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

/** A value and the notes of its lines. */
struct Noted {
    FactValue value;
    std::vector<std::string> notes = {};
};

/** How a fact is found out, and from what. */
struct Answer {
    FactSource source;
    std::function<Noted(const SetModel&)> of;
};

// The layer that has replaced the value of another; empty if none has.
std::string noteOf(const SetModel& set, const ConfigKey& name) {
    const SetItem* const item = set.find(name.category, name.key);
    const bool isReplaced = item != nullptr && item->history.front().layer != item->current().layer;
    return isReplaced ? std::string(nameOf(item->current().layer)) : "";
}

FactValue valueOf(const SetModel& set, const ConfigKey& name) {
    const std::string text(set.valueOf(name));
    const product::KnownItem* const known = product::findKnownItem(name);
    const auto type = known != nullptr ? known->type : product::ValueType::TEXT;
    if (type == product::ValueType::SWITCH) {
        return text == "true";
    }
    if (type == product::ValueType::INTEGER) {
        const int32_t number = product::parseDecimal(text);
        const bool isInRange = number >= known->least && number <= known->most;
        return isInRange ? FactValue(number) : FactValue(NoValue{"(no answer)"});
    }
    return text;
}

Answer item(const ConfigKey& name) {
    return {{"item", {name}}, [name](const SetModel& set) -> Noted {
                return {valueOf(set, name), {noteOf(set, name)}};
            }};
}

// The item that a getter answers, by its selector.
Answer getter(std::string_view method, uint32_t key = 0) {
    const auto name = product::itemOf(product::kProjectItems[product::projectItem(method)], 0, key);
    return item(*name);
}

// The files of the EDIDs of a port, by their versions.
Answer edids(uint32_t port) {
    FactSource source = {"files", {}, {"1P4", "2P0", "2P1"}};
    for (uint32_t version = 0; version < source.versions.size(); ++version) {
        source.items.push_back(*product::itemOf(
                product::kProjectItems[product::projectItem("getHDMIEdidPath")], port, version));
    }
    return {source, [source](const SetModel& set) -> Noted {
                Files files;
                std::vector<std::string> notes;
                for (size_t i = 0; i < source.items.size(); ++i) {
                    files.emplace_back(source.versions[i], set.valueOf(source.items[i]));
                    notes.push_back(noteOf(set, source.items[i]));
                }
                return {files, notes};
            }};
}

Answer tvFeatures(bool isOn) {
    return {{isOn ? "featuresOn" : "featuresOff"}, [isOn](const SetModel& set) -> Noted {
                const product::TvFeatures& features = set.product().features();
                Names names;
                for (const product::TvFlagRow& row : product::kTvFlags) {
                    if (features.get(row) == isOn) {
                        names.list.push_back(
                                toString(static_cast<vendor::morlak::mlkconfigs::V1_0::ConfigType>(
                                        row.type)));
                    }
                }
                return {names};
            }};
}

Answer frameworkSwitch(std::string_view method) {
    return {{"switch", {}, {}, std::string(method)}, [method](const SetModel& set) -> Noted {
                return {set.product().switches().get(product::frameworkItem(method)) != 0};
            }};
}

Answer fact(const char* kind, FactValue (*answer)(const SetModel&)) {
    return {{kind}, [answer](const SetModel& set) -> Noted { return {answer(set)}; }};
}

// Why there is no saved country.
NoValue noCountry(const SetModel& set) {
    const FileLines* const saved = set.line().find(kCountryIdPath);
    if (saved == nullptr || !saved->exists() || !saved->isUnreadable()) {
        return {"(none saved)"};
    }
    const bool isTooLarge = saved->problems().front().kind == ProblemKind::TOO_LARGE;
    return {isTooLarge ? "(country_id.bin is too large)" : "(country_id.bin cannot be read)"};
}

// The same for a set that has a country.
Answer ofCountry(const char* kind, FactValue (*answer)(const SetModel&)) {
    return {{kind}, [answer](const SetModel& set) -> Noted {
                if (set.choice().country == kNoCountry) {
                    return {noCountry(set)};
                }
                return {answer(set)};
            }};
}

std::string writtenPath(const SetModel& set, const FileLines* file) {
    const Tree& tree = set.line().tree();
    return file != nullptr ? tree.written(tree.host(file->path())) : std::string();
}

FactValue index(const SetModel& set) {
    return indexOf(set);
}

FactValue highestIndex(const SetModel& set) {
    return static_cast<int32_t>(set.product().project().items().getProjectMaxIdx());
}

FactValue customerId(const SetModel& set) {
    return set.product().project().items().getCustomerId();
}

FactValue modelFile(const SetModel& set) {
    return writtenPath(set, set.choice().model != nullptr ? set.choice().model->file : nullptr);
}

FactValue boardFile(const SetModel& set) {
    return writtenPath(set, set.choice().board != nullptr ? set.choice().board->file : nullptr);
}

FactValue modelList(const SetModel& set) {
    std::vector<std::string> list;
    set.product().project().items().getProjectIniList(list);
    return list;
}

FactValue countryText(const SetModel& set) {
    const std::string name = countryName(set.choice().country);
    return name.empty() ? FactValue(NoValue{"(unknown)"}) : FactValue(name);
}

FactValue countryNumber(const SetModel& set) {
    return static_cast<int32_t>(set.choice().country);
}

FactValue tvSystem(const SetModel& set) {
    const std::string_view file = set.valueOf(product::item::kTvSystems);
    const bool isRead = set.tvSystems() != nullptr && set.tvSystems()->file->exists() &&
                        !set.tvSystems()->file->isUnreadable();
    if (!file.empty() && !isRead) {
        return NoValue{"(not readable)"};
    }
    return set.tvSystem();
}

FactValue channels(const SetModel& set) {
    Counts counts;
    for (const CountryPlan& plan : plansOf(set, set.choice().country)) {
        if (!plan.channels.empty()) {
            counts.emplace_back(nameOf(plan), static_cast<int32_t>(plan.channels.size()));
        }
    }
    return counts;
}

FactValue languages(const SetModel& set) {
    return Names{set.product().project().region().languages()};
}

FactValue tvconfigs(const SetModel& set) {
    return set.line().tree().partitions().tvconfigs;
}
FactValue tvdata(const SetModel& set) {
    return set.line().tree().partitions().tvdata;
}
FactValue impdata(const SetModel& set) {
    return set.line().tree().partitions().impdata;
}

struct Row {
    FactName name;
    Answer answer;
};

std::vector<Row> makeRows() {
    return {
            {{"Project", "Name", "name"}, getter("getProjectName")},
            {{"Project", "Index", "index"}, fact("index", index)},
            {{"Project", "Highest index", "highestIndex"}, fact("highestIndex", highestIndex)},
            {{"Project", "Customer", "customer"}, fact("customer", customerId)},
            {{"Project", "Client type", "clientType"}, getter("getClientType")},
            {{"Project", "Region", "region"}, getter("getRegionName")},
            {{"Project", "Model file", "modelFile"}, fact("modelFile", modelFile)},
            {{"Project", "Board file", "boardFile"}, fact("boardFile", boardFile)},
            {{"Project", "Project files", "projectFiles"}, fact("modelList", modelList)},

            {{"Picture", "Panel", "panel"}, getter("getPanelName")},
            {{"Picture", "Picture quality", "pictureQuality"}, getter("getPQPath")},
            {{"Picture", "Overscan", "overscan"}, getter("getOverscanPath")},
            {{"Picture", "Spread spectrum", "spreadSpectrum"}, getter("getSSCPath")},

            {{"Sound", "Sound quality", "soundQuality"}, getter("getAQPath")},
            {{"Sound", "Volume curve", "volumeCurve"}, getter("getVolumeCurve")},
            {{"Sound", "Equaliser 0", "equaliser0"}, getter("getEQPath", 0)},
            {{"Sound", "Equaliser 1", "equaliser1"}, getter("getEQPath", 1)},
            {{"Sound", "Amplifier", "amplifier"}, getter("getAMPSelection", 0)},
            {{"Sound", "Address", "amplifierAddress"}, getter("getAMPAddr", 0)},
            {{"Sound", "Second amplifier", "secondAmplifier"}, getter("getAMPSelection", 1)},
            {{"Sound", "Second address", "secondAmplifierAddress"}, getter("getAMPAddr", 1)},
            {{"Sound", "Panel's delays", "panelDelays"}, item(product::item::kPanelAudio)},
            {{"Sound", "IC's delays", "icDelays"}, item(product::item::kICAudio)},
            {{"Sound", "AVR's delays", "avrDelays"}, item(product::item::kAvrAudio)},

            {{"HDMI", "EDID of port 0", "edid0"}, edids(0)},
            {{"HDMI", "EDID of port 1", "edid1"}, edids(1)},
            {{"HDMI", "EDID of port 2", "edid2"}, edids(2)},
            {{"HDMI", "EDID of port 3", "edid3"}, edids(3)},
            {{"HDMI", "HDCP 1.x", "hdcp1"}, item({"[HDCP_KEY_1X]", "HDCP_KEY_File"})},
            {{"HDMI", "HDCP 2.x", "hdcp2"}, item({"[HDCP_KEY_2X]", "HDCP_KEY_File"})},

            {{"Reception", "Inputs", "inputs"}, getter("getInputSource")},
            {{"Reception", "Tuner type", "tunerType"}, getter("getTunerType")},
            {{"Reception", "Tuner 0", "tuner0"}, getter("getTunerConfig", 0)},
            {{"Reception", "Tuner 1", "tuner1"}, getter("getTunerConfig", 1)},
            {{"Reception", "Channel database", "channelDatabase"},
             getter("getTvChannelDatabasePath")},
            {{"Reception", "Recording", "recording"}, getter("getDPVREnabled")},
            {{"Reception", "HbbTV", "hbbtv"}, getter("getHBBTVEnabled")},
            {{"Reception", "Features on", "featuresOn"}, tvFeatures(true)},
            {{"Reception", "Features off", "featuresOff"}, tvFeatures(false)},

            {{"Country", "Name", "name"}, ofCountry("countryName", countryText)},
            {{"Country", "Number", "number"}, ofCountry("countryNumber", countryNumber)},
            {{"Country", "TV system", "tvSystem"}, ofCountry("tvSystem", tvSystem)},
            {{"Country", "TV configuration", "tvConfiguration"}, item(product::kTvConfigItem)},
            {{"Country", "Channels", "channels"}, ofCountry("channels", channels)},
            {{"Country", "Languages", "languages"}, fact("languages", languages)},

            {{"Power", "Mode at power-on", "powerOnMode"}, getter("getPowerOnMode")},
            {{"Power", "Logo", "logo"}, getter("getPowerLogoPath")},
            {{"Power", "Boot animation", "bootAnimation"}, getter("getBootAnimationPath")},
            {{"Power", "Suspend to RAM", "suspendToRam"}, frameworkSwitch("strEnabled")},
            {{"Power", "Suspend forced", "suspendForced"}, frameworkSwitch("getForceStrEnabled")},
            {{"Power", "Wake on wireless", "wakeOnWireless"}, frameworkSwitch("getWowEnabled")},

            {{"Remote", "Configuration", "configuration"}, getter("getIRConfig")},
            {{"Remote", "Key filter", "keyFilter"}, getter("getIRFilter")},

            {{"Partitions", "tvconfigs", "tvconfigs"}, fact("tvconfigs", tvconfigs)},
            {{"Partitions", "tvdata", "tvdata"}, fact("tvdata", tvdata)},
            {{"Partitions", "impdata", "impdata"}, fact("impdata", impdata)},
    };
}

const std::vector<Row>& rows() {
    static const std::vector<Row> kRows = makeRows();
    return kRows;
}

}  // namespace

int32_t indexOf(const SetModel& set) {
    if (set.choice().model != nullptr) {
        return set.choice().model->index;
    }
    const std::string& folder = set.line().tree().partitions().impdata;
    return static_cast<int32_t>(product::ProjectID::read(folder).value_or(0));
}

std::string whyNoModel(const SetModel& set) {
    if (set.choice().model != nullptr) {
        return "";
    }
    const FileLines* const system = set.choice().customer->system;
    const Tree& tree = set.line().tree();
    return system == nullptr || !system->exists()
                   ? std::string("there is no system file that lists models")
                   : tree.written(tree.host(system->path())) + " has none of index " +
                             std::to_string(indexOf(set)) + "; --model names one";
}

std::vector<FactRow> factRows() {
    std::vector<FactRow> all;
    for (const Row& row : rows()) {
        all.push_back({row.name, row.answer.source});
    }
    return all;
}

std::vector<Fact> factsOf(const SetModel& set) {
    std::vector<Fact> facts;
    facts.reserve(rows().size());
    for (const Row& row : rows()) {
        Noted noted = row.answer.of(set);
        facts.push_back({row.name, std::move(noted.value), std::move(noted.notes)});
    }
    return facts;
}

std::set<std::string> missingOf(const SetModel& set, const std::vector<Fact>& facts) {
    std::set<std::string> missing;
    for (const std::string& path : pathsIn(facts)) {
        if (!product::pathExists(set.line().tree().hostOfWritten(path))) {
            missing.insert(path);
        }
    }
    return missing;
}

}  // namespace mlk::tree
