// Rules about names in audio, karaoke, key and DDC/CI files.

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "common/Paths.h"
#include "projectconfigs/KnownItems.h"
#include "projectconfigs/SoundDelays.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/LineRemarks.h"
#include "tools/mlktree/rules/Meaning.h"
#include "tools/mlktree/rules/NameUses.h"
#include "tools/mlktree/rules/Rivals.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

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

// The names that are meant, by the names that stand there.
using Meant = std::map<std::string_view, std::string_view>;

// What the files of one kind have.
struct Kind {
    std::vector<const FileLines*> files;
    NameUses sections;
    NameUses keys;
    Meant meantSections;
    Meant meantKeys;
};

void countNames(const ProductLine& line, Kind& kind) {
    std::map<uint32_t, size_t> uses;  // of items that count, by their contents
    for (const FileLines* const file : kind.files) {
        for (const auto& [name, first] : file->sections()) {
            kind.sections.add(name, 1);
            if (isWholeSection(name) && trimmed(name) == name) {
                kind.meantSections.emplace(name, "");
            }
        }
        for (size_t i = 0; i < file->lines().size(); ++i) {
            if (file->counts(file->lines()[i])) {
                ++uses[file->contents()[i]];
            }
        }
    }
    for (const auto& [content, count] : uses) {
        const ReadLine& read = *line.contents()[content].line;
        kind.keys.add(read.key, count);
        if (!read.key.empty() && trimmed(read.key) == read.key) {
            kind.meantKeys.emplace(read.key, "");
        }
    }
}

// Leaves the names that nearly are one that more files have.
void findMeant(NameUses& uses, Meant& names) {
    uses.sort(false);
    size_t searches = 0;
    for (auto each = names.begin(); each != names.end();) {
        each->second = uses.commonNameFor(each->first, searches);
        each = each->second.empty() ? names.erase(each) : std::next(each);
    }
}

void reportUnlike(const ProductLine& line, Reporter& reporter, const FileLines& file,
                  const ReadLine& read, std::string_view name, std::string_view right) {
    reporter.report(placeOf(line, file, read, name),
                    "other files of this kind have " + quoted(right) + ", not " + quoted(name));
}

// Whether a file of the kind has the name in that section: names of other sections are not
// comparable. Looks only once for each name.
class InSection {
  public:
    explicit InSection(const Kind& kind) : mKind(kind) {}

    bool has(std::string_view section, std::string_view key) {
        const auto [found, isNew] = mFound.try_emplace({section, key}, false);
        if (isNew) {
            found->second = std::any_of(
                    mKind.files.begin(), mKind.files.end(),
                    [&](const FileLines* file) { return file->find(section, key) != nullptr; });
        }
        return found->second;
    }

  private:
    const Kind& mKind;
    std::map<std::pair<std::string_view, std::string_view>, bool> mFound;
};

void checkKind(const ProductLine& line, Reporter& reporter, const Kind& kind) {
    const std::vector<bool> unlike =
            contentsThat(line, [&](FileFormat format, const ReadLine& read) {
                return format == FileFormat::AUXILIARY && read.use == LineUse::ITEM &&
                       kind.meantKeys.count(read.key) > 0 && !isBrokenSection(read);
            });
    InSection inSection(kind);
    for (const FileLines* const file : kind.files) {
        for (const auto& [name, right] : kind.meantSections) {
            const auto first = file->sections().find(name);
            if (first != file->sections().end() && file->sections().count(right) == 0) {
                reportUnlike(line, reporter, *file, *first->second, name, right);
            }
        }
        for (const ReadLine* const read : linesThat(*file, unlike)) {
            const std::string_view right = kind.meantKeys.at(read->key);
            if (file->counts(*read) && file->find(read->section, right) == nullptr &&
                inSection.has(read->section, right)) {
                reportUnlike(line, reporter, *file, *read, read->key, right);
            }
        }
    }
}

// Files that differ in more names than this are no twins, and their names not comparable.
constexpr size_t kMostOwnNames = 20;

// The items of a file whose section the other file has, but not with their key; nothing if these
// are too many.
std::vector<const ReadLine*> itemsThatLacks(const FileLines& other, const FileLines& file) {
    std::vector<const ReadLine*> own;
    for (const ReadLine& read : file.lines()) {
        const bool isItem = read.use == LineUse::ITEM && !read.key.empty() && file.counts(read);
        if (!isItem || other.sections().count(read.section) == 0 ||
            other.find(read.section, read.key) != nullptr) {
            continue;
        }
        if (own.size() == kMostOwnNames) {
            return {};
        }
        own.push_back(&read);
    }
    return own;
}

// The sections of a file that the other file lacks; nothing if these are too many.
std::vector<std::string_view> sectionsThatLacks(const FileLines& other, const FileLines& file) {
    std::vector<std::string_view> own;
    for (const auto& [name, first] : file.sections()) {
        if (isWholeSection(name) && other.sections().count(name) == 0) {
            own.push_back(name);
        }
    }
    return own.size() <= kMostOwnNames ? own : std::vector<std::string_view>();
}

void checkSectionsOfPair(const ProductLine& line, Reporter& reporter, const FileLines& file,
                         const FileLines& other) {
    const std::vector<std::string_view> others = sectionsThatLacks(file, other);
    for (const std::string_view name : sectionsThatLacks(other, file)) {
        const std::string_view near = nearestName(name, others);
        if (!near.empty()) {
            reportRivals(line, reporter, {&file, file.sections().find(name)->second, name},
                         {&other, other.sections().find(near)->second, near});
        }
    }
}

// Of two files, no name is the one that more files of the kind have.
void checkPair(const ProductLine& line, Reporter& reporter, const Kind& kind) {
    const FileLines& file = *kind.files.front();
    const FileLines& other = *kind.files.back();
    checkSectionsOfPair(line, reporter, file, other);
    const std::vector<const ReadLine*> others = itemsThatLacks(file, other);
    for (const ReadLine* const read : itemsThatLacks(other, file)) {
        std::vector<std::string_view> names;
        for (const ReadLine* const candidate : others) {
            if (candidate->section == read->section) {
                names.push_back(candidate->key);
            }
        }
        const std::string_view name = nearestName(read->key, names);
        if (!name.empty() && !differsInShortWord(read->key, name)) {
            reportRivals(line, reporter, {&file, read, read->key},
                         {&other, other.find(read->section, name), name});
        }
    }
}

void checkNames(const ProductLine& line, Reporter& reporter) {
    std::map<std::string_view, Kind> kinds;
    for (const auto& [path, file] : line.files()) {
        if (file->format() == FileFormat::AUXILIARY && file->exists() && !file->isUnreadable()) {
            kinds[kindOf(line, path)].files.push_back(file.get());
        }
    }
    for (auto& [section, kind] : kinds) {
        countNames(line, kind);
        findMeant(kind.sections, kind.meantSections);
        if (kind.files.size() == 2) {
            kind.meantKeys.clear();
            checkPair(line, reporter, kind);
        }
        findMeant(kind.keys, kind.meantKeys);
        if (!kind.meantSections.empty() || !kind.meantKeys.empty()) {
            checkKind(line, reporter, kind);
        }
    }
}

void checkSections(const ProductLine& line, Reporter& reporter) {
    for (const auto& [path, file] : line.files()) {
        if (file->format() != FileFormat::AUXILIARY) {
            continue;
        }
        const ReadLine* first = nullptr;
        size_t count = 0;
        for (const ReadLine& read : file->lines()) {
            if (read.use == LineUse::SECTION) {
                break;
            }
            const bool isItem = read.use == LineUse::ITEM && !isBrokenSection(read);
            first = first == nullptr && isItem ? &read : first;
            count += isItem ? 1 : 0;
        }
        if (first != nullptr) {
            reporter.report(placeOf(line, *file, *first, first->key),
                            counted(count, "item stands", "items stand") +
                                    " above the first section, where no client looks");
        }
    }
}

// The file of a receiver has the form AVR_vendor_name.ini, as the receiver announces both.
void checkReceivers(const ProductLine& line, Reporter& reporter) {
    for (const auto& [path, file] : line.files()) {
        const std::string_view name = product::fileNameOf(path);
        const std::string_view prefix = product::kAvrAudioPrefix;
        const size_t second = name.find('_', prefix.size());
        if (file->format() != FileFormat::AUXILIARY || !beginsWith(name, prefix)) {
            continue;
        }
        const std::string_view end = product::kAudioFileEnd;
        const bool hasBoth = second != std::string_view::npos && second > prefix.size() &&
                             second + 1 + end.size() < name.size();
        const std::vector<Naming>& namings = line.namings(path);
        const bool isFound = std::any_of(namings.begin(), namings.end(), [](const Naming& naming) {
            return naming.line != nullptr && naming.line->key == product::item::kAvrAudio.key;
        });
        if (isFound && !hasBoth) {
            reporter.report(placeOf(*file),
                            "no receiver has this file: its name is AVR_, the vendor, \"_\", the "
                            "name of the receiver, and .ini");
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
        {"item-without-section", Severity::WARNING,
         "an item of an audio, karaoke, key or DDC/CI file stands above the first section",
         "Clients ask for a section and a key, and no section has this one.",
         "HDMI_DELAY = 40\n[SPEAKER]", "[SPEAKER]\nHDMI_DELAY = 40", checkSections},
        {"receiver-name", Severity::WARNING, "no receiver can have a file of this name",
         "A receiver announces its vendor and its name, and the service looks for the file that "
         "has "
         "both in its name.",
         "AVR_0AFADE-Sundra7.ini", "AVR_0AFADE_Sundra7.ini", checkReceivers},
};

}  // namespace

RuleFamily auxiliaryNames() {
    return {"auxiliary-names", "Names in audio, karaoke, key and DDC/CI files", kRules,
            std::size(kRules)};
}

}  // namespace mlk::tree
