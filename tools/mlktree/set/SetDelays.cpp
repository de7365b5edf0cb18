#include "tools/mlktree/set/SetDelays.h"

#include <algorithm>
#include <set>
#include <utility>

#include "common/Decimal.h"
#include "common/FileLimits.h"
#include "common/Paths.h"
#include "projectconfigs/KnownItems.h"
#include "projectconfigs/KnownProperties.h"
#include "projectconfigs/SoundDelays.h"
#include "tools/mlktree/FileReading.h"
#include "tools/mlktree/set/SetProduct.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

constexpr const char* kAvr = "AVR";

// The service keeps nothing of a file that has no items, or cannot be read whole.
bool isKept(const FileLines& file) {
    return !file.isUnreadable() &&
           std::any_of(file.lines().begin(), file.lines().end(),
                       [](const ReadLine& read) { return read.use == LineUse::ITEM; });
}

}  // namespace

SetDelays::SetDelays(const SetModel& set, const std::string& avrVendor, const std::string& avrName)
    : mSet(set) {
    const auto named = [&](const ConfigKey& item) { return std::string(set.startValueOf(item)); };
    add("panel", named(product::item::kPanelAudio), true, false);
    add("IC", named(product::item::kICAudio), true, false);
    add("default AVR", named(product::item::kAvrAudio), true, true);
    const std::string hardware = set.line().properties().get(product::property::kHardware);
    add("hardware",
        "/tvconfigs" + std::string(product::kHardwareAudioFolder) + product::kHardwareAudioPrefix +
                hardware + product::kAudioFileEnd,
        false, false);
    if (avrVendor.empty() || avrName.empty()) {
        return;
    }
    const std::string name =
            product::kAvrAudioPrefix + avrVendor + "_" + avrName + product::kAudioFileEnd;
    // The present path, which a country may have replaced.
    const std::string path(set.valueOf(product::item::kAvrAudio));
    const size_t folder = path.size() - product::fileNameOf(path).size();
    const std::string file = path.substr(0, folder) + name;
    if (std::max({avrVendor.size(), avrName.size(), name.size()}) > product::kFileNameSize ||
        file.size() >= product::kAvrPathSize) {
        throw UsageError(
                "--avr-vendor and --avr-name: the service refuses an AVR whose file has "
                "a name of more than " +
                std::to_string(product::kFileNameSize) + " bytes or a path of more than " +
                std::to_string(product::kAvrPathSize - 1));
    }
    add(kAvr, file, true, true);
    product::SoundDelays& sounds = set.product().project().sounds();
    // Refused if the path is longer on this machine than on a set.
    mIsAvrSet = sounds.trySetAvrVendorId(avrVendor) && sounds.trySetAvrOSDName(avrName);
}

void SetDelays::add(const char* role, const std::string& path, bool needsFolder, bool isOfArc) {
    if (path.empty()) {
        mRoles.push_back({role, "", nullptr, isOfArc});
        return;
    }
    const std::string relative = mSet.pathOf(path);
    const std::string name(product::fileNameOf(path));
    const bool hasFolder = name.size() < path.size();
    // Even a file that gets no name is loaded: another one of its name is not loaded then.
    const FileLines* const loaded = hasFolder || !needsFolder ? load(relative) : nullptr;
    const bool hasName = !needsFolder || (hasFolder && name.size() < product::kFileNameSize);
    mRoles.push_back({role, relative, hasName ? loaded : nullptr, isOfArc});
}

// The file that is loaded under the name of this one.
const FileLines* SetDelays::load(const std::string& path) {
    const std::string name(product::fileNameOf(path));
    const auto known = mLoaded.find(name);
    if (known != mLoaded.end()) {
        return known->second;
    }
    const FileLines* file = mSet.line().find(path);
    if (file == nullptr || file->format() != FileFormat::AUXILIARY) {
        file = mOwn.emplace_back(readFile(mSet.line().tree(), path, FileFormat::AUXILIARY)).get();
    }
    if (!isKept(*file)) {
        return nullptr;
    }
    mLoaded.emplace(name, file);
    return file;
}

int32_t SetDelays::delay(std::string_view section, std::string_view key, bool isArc) const {
    const int32_t delay = mSet.product().project().sounds().delay({section, key}, isArc);
    if (mIsAvrSet || !isArc || mRoles.back().name != kAvr) {
        return delay;
    }
    const int32_t ofAvr = summands(section, key, isArc).back().value;
    return static_cast<int32_t>(static_cast<uint32_t>(delay) + static_cast<uint32_t>(ofAvr));
}

std::vector<Summand> SetDelays::summands(std::string_view section, std::string_view key,
                                         bool isArc) const {
    std::vector<Summand> summands;
    for (const Role& role : mRoles) {
        if (role.isOfArc && !isArc) {
            continue;
        }
        const ReadLine* const line = role.file != nullptr ? role.file->find(section, key) : nullptr;
        const std::string text = line != nullptr ? std::string(line->value) : "";
        summands.push_back({role.name, role.path, role.file, line, product::parseDecimal(text)});
    }
    return summands;
}

SetDelays::Names SetDelays::items(bool isArc) const {
    std::set<std::pair<std::string_view, std::string_view>> names;
    for (const Role& role : mRoles) {
        if (role.file == nullptr || (role.isOfArc && !isArc)) {
            continue;
        }
        for (const ReadLine& read : role.file->lines()) {
            if (read.use == LineUse::ITEM) {
                names.emplace(read.section, read.key);
            }
        }
    }
    return {names.begin(), names.end()};
}

}  // namespace mlk::tree
