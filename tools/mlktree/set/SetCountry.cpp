#include "tools/mlktree/set/SetCountry.h"

#include "projectconfigs/KnownItems.h"
#include "regional/RegionalNames.h"
#include "tools/mlktree/CountryNames.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/set/SetProduct.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

using ::android::hardware::hidl_enum_range;

namespace {

const char* elementOf(FreqTableType type) {
    switch (type) {
        case FreqTableType::DTV_ANTENNA:
            return product::element::kDtvAntenna;
        case FreqTableType::DTV_CABLE:
            return product::element::kDtvCable;
        case FreqTableType::ATV_ANTENNA:
            return product::element::kAtvAntenna;
        case FreqTableType::ATV_CABLE:
            break;
    }
    return product::element::kAtvCable;
}

bool isCable(FreqTableType type) {
    return type == FreqTableType::DTV_CABLE || type == FreqTableType::ATV_CABLE;
}

// The element that names the plan: the last of the country's blocks that has it.
const ReadLine* elementIn(const FileLines& map, const std::string& country, FreqTableType type,
                          const std::string& cable, const std::string& name) {
    const ReadLine* found = nullptr;
    for (const ReadLine& read : map.lines()) {
        const bool isKind = read.use == LineUse::ITEM && read.isNew && read.owner == country &&
                            read.key == elementOf(type) && read.value == name;
        const bool isCableKind = read.section.empty() ? cable == product::cable::kAuto
                                                      : beginsWith(read.section, cable);
        if (isKind && (!isCable(type) || isCableKind)) {
            found = &read;
        }
    }
    return found;
}

std::string fileNameIn(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

}  // namespace

std::string nameOf(const CountryPlan& plan) {
    return plan.kind + (plan.cable.empty() ? "" : " " + plan.cable);
}

std::string countryName(_tv_country country) {
    static const product::NameTable names = product::countryNames();
    std::string name;
    if (country != kNoCountry) {
        names.firstNameOf(country, name);
    }
    return name;
}

std::string planFolderOf(const SetModel& set) {
    return planFolderOf(set.line().tree(), set.valueOf(product::item::kChannelPlans));
}

std::vector<CountryPlan> plansOf(const PlanPlace& place, _tv_country country) {
    std::vector<CountryPlan> plans;
    const auto add = [&](FreqTableType type, AtscCableType cable, const std::string& cableName) {
        const std::string file = place.folder->planOf(country, type, cable);
        if (file.empty()) {
            return;
        }
        CountryPlan plan{toString(type), cableName, file, type, cable, place.map, nullptr, {}};
        if (place.map != nullptr) {
            plan.line =
                    elementIn(*place.map, countryName(country), type, cableName, fileNameIn(file));
        }
        plans.push_back(std::move(plan));
    };
    for (const auto type : hidl_enum_range<FreqTableType>()) {
        if (!isCable(type)) {
            add(type, AtscCableType::AUTO, "");
            continue;
        }
        for (const auto cable : hidl_enum_range<AtscCableType>()) {
            add(type, cable, toString(cable));
        }
    }
    return plans;
}

std::vector<CountryPlan> plansOf(const SetModel& set, _tv_country country) {
    const std::string path = planFolderOf(set);
    PlanPlace place;
    for (const PlanFiles& files : set.line().planFolders()) {
        if (files.folder->path() == path) {
            place = {files.folder.get(), files.map};
        }
    }
    std::unique_ptr<PlanFolder> own;
    if (place.folder == nullptr) {
        // The product line has only folders that an item names, if there is one.
        own = std::make_unique<PlanFolder>(set.line().tree(), path);
        place.folder = own.get();
    }
    std::vector<CountryPlan> plans = plansOf(place, country);
    for (CountryPlan& plan : plans) {
        plan.channels = set.product().project().region().plan(country, plan.type, plan.cableType);
    }
    return plans;
}

Listed listedIn(const SetModel& set, const ConfigKey& item, _tv_country country) {
    const std::string_view value = set.valueOf(item);
    Listed listed;
    listed.list = value.empty() ? nullptr : set.line().find(set.pathOf(value));
    if (listed.list == nullptr) {
        return listed;
    }
    for (const ReadLine& read : listed.list->lines()) {
        if (read.use == LineUse::ITEM && countryOf(read.key) == country && listed.line == nullptr) {
            listed.line = &read;
        }
    }
    return listed;
}

}  // namespace mlk::tree
