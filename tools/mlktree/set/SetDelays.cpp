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

// The file of an AVR lies beside that of the default AVR.
std::string avrPathOf(const DelayPaths& paths, const std::string& avrFile) {
    const std::string& path = paths.presentAvr;
    return path.substr(0, path.size() - product::fileNameOf(path).size()) + avrFile;
}

}  // namespace

DelayPaths delayPathsOf(const SetModel& set) {
    return {std::string(set.startValueOf(product::item::kPanelAudio)),
            std::string(set.startValueOf(product::item::kICAudio)),
            std::string(set.startValueOf(product::item::kAvrAudio)),
            std::string(set.valueOf(product::item::kAvrAudio))};
}

SetDelays::SetDelays(const ProductLine& line, const DelayPaths& paths, const std::string& avrFile)
    : mLine(line) {
    add("panel", paths.panel, true, false);
    add("IC", paths.ic, true, false);
    add("default AVR", paths.defaultAvr, true, true);
    const std::string hardware = line.properties().get(product::property::kHardware);
    add("hardware",
        "/tvconfigs" + std::string(product::kHardwareAudioFolder) + product::kHardwareAudioPrefix +
                hardware + product::kAudioFileEnd,
        false, false);
    if (!avrFile.empty()) {
        add(kAvr, avrPathOf(paths, avrFile), true, true);
    }
}

bool SetDelays::isRefused(const DelayPaths& paths, const std::string& avrFile) {
    return avrFile.size() > product::kFileNameSize ||
           avrPathOf(paths, avrFile).size() >= product::kAvrPathSize;
}

void SetDelays::add(const char* role, const std::string& path, bool needsFolder, bool isOfArc) {
    if (path.empty()) {
        mRoles.push_back({role, "", nullptr, isOfArc});
        return;
    }
    const std::string relative = mLine.tree().relative(mLine.tree().hostOfWritten(path));
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
    const FileLines* file = mLine.find(path);
    if (file == nullptr || file->format() != FileFormat::AUXILIARY) {
        file = mOwn.emplace_back(readFile(mLine.tree(), path, FileFormat::AUXILIARY)).get();
    }
    if (!isKept(*file)) {
        return nullptr;
    }
    mLoaded.emplace(name, file);
    return file;
}

int32_t SetDelays::delay(std::string_view section, std::string_view key, bool isArc) const {
    return sumOf(summands(section, key, isArc));
}

int32_t sumOf(const std::vector<Summand>& summands) {
    uint32_t sum = 0;
    for (const Summand& summand : summands) {
        sum += static_cast<uint32_t>(summand.value);
    }
    return static_cast<int32_t>(sum);
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
