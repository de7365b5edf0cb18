// A rule about names in audio, karaoke, key and DDC/CI files.

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <string>

#include "projectconfigs/KnownItems.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/Meaning.h"
#include "tools/mlktree/rules/Texts.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

using Names = std::map<std::string_view, size_t>;  // with how many files or sections have them

// The section of the items that name files of one kind; "[AUDIO]" also for a file of the hardware.
std::string_view kindOf(const ProductLine& line, const std::string& path) {
    for (const Naming& naming : line.namings(path)) {
        if (naming.line == nullptr) {
            return product::item::kPanelAudio.category;
        }
        const auto* const known = product::findKnownItem({naming.line->section, naming.line->key});
        if (known != nullptr && known->names == FileFormat::AUXILIARY) {
            return naming.line->section;
        }
    }
    return {};
}

// What the files of one kind have.
struct Kind {
    std::vector<const FileLines*> files;
    Names sections;
    Names keys;
};

std::map<std::string_view, Kind> kindsOf(const ProductLine& line) {
    std::map<std::string_view, Kind> kinds;
    for (const auto& [path, file] : line.files()) {
        if (file->format() != FileFormat::AUXILIARY || !file->exists() || file->isUnreadable()) {
            continue;
        }
        Kind& kind = kinds[kindOf(line, path)];
        kind.files.push_back(file.get());
        for (const auto& [name, first] : file->sections()) {
            ++kind.sections[name];
        }
        for (const ReadLine& read : file->lines()) {
            if (read.use == LineUse::ITEM && file->find(read.section, read.key) == &read) {
                ++kind.keys[read.key];
            }
        }
    }
    return kinds;
}

// The near name that more files have; empty if there is none.
std::string_view commonNameFor(const Names& names, std::string_view name) {
    constexpr size_t kMostNames = 500;
    const size_t count = names.at(name);
    std::vector<std::string_view> candidates;
    for (const auto& [other, uses] : names) {
        if (uses > count && candidates.size() < kMostNames) {
            candidates.push_back(other);
        }
    }
    return nearestName(name, candidates);
}

void checkNames(const ProductLine& line, Reporter& reporter) {
    for (const auto& [section, kind] : kindsOf(line)) {
        std::map<std::string_view, std::string_view> common;  // of names that were looked up
        const auto rightFor = [&common](const Names& names, std::string_view name) {
            const auto [right, isNew] = common.try_emplace(name);
            if (isNew) {
                right->second = commonNameFor(names, name);
            }
            return right->second;
        };
        for (const FileLines* const file : kind.files) {
            for (const ReadLine& read : file->lines()) {
                const bool isSection = read.use == LineUse::SECTION;
                const std::string_view name = isSection ? read.section : read.key;
                const bool counts =
                        isSection ? isWholeSection(name) && file->sections().at(name) == &read
                                  : read.use == LineUse::ITEM && !name.empty() &&
                                            !isBrokenSection(read) &&
                                            file->find(read.section, name) == &read;
                if (!counts || trimmed(name) != name) {
                    continue;
                }
                const std::string_view right =
                        rightFor(isSection ? kind.sections : kind.keys, name);
                const bool hasRight = isSection ? file->sections().count(right) > 0
                                                : file->find(read.section, right) != nullptr;
                if (!right.empty() && !hasRight) {
                    reporter.report(placeOf(line, *file, read, name),
                                    "other files of this kind have " + quoted(right) + ", not " +
                                            quoted(name));
                }
            }
        }
    }
}

constexpr Rule kRules[] = {
        {"unlike-other-files", Severity::WARNING,
         "an audio, karaoke, key or DDC/CI file has nearly the name that others have",
         "The names are those that clients ask for, and a delay is the sum of what several files "
         "have for one section and key. A misspelt one is missing from it.",
         "[SPEAKER]\nHDMI_DEALY = 40      (the other audio files have HDMI_DELAY)",
         "[SPEAKER]\nHDMI_DELAY = 40", checkNames},
};

}  // namespace

RuleFamily auxiliaryNames() {
    return {"auxiliary-names", "Names in audio, karaoke, key and DDC/CI files", kRules,
            std::size(kRules)};
}

}  // namespace mlk::tree
