// Rules about values that their getters cannot use.

#include <algorithm>
#include <iterator>
#include <set>
#include <string>

#include "common/Decimal.h"
#include "projectconfigs/SoundDelays.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/Meaning.h"
#include "tools/mlktree/rules/MeaningValue.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

void checkValue(const ProductLine& line, Reporter& reporter, const FileLines& file,
                const ReadLine& read, const product::KnownItem& item) {
    const std::string problem = problemOf(item.type, trimmed(read.value), {item.least, item.most});
    if (!problem.empty()) {
        // The caret stands after the "=" if there is no value.
        const std::string_view needle = read.value.empty() ? "=" : read.value;
        reporter.report(placeOf(line, file, read, needle),
                        std::string(read.section) + " " + std::string(read.key) + ": " + problem);
    }
}

// Checks the known items of a type: those of models, boards and TV systems.
void checkType(const ProductLine& line, Reporter& reporter, product::ValueType type) {
    const auto isOfType = [type](const ItemName& /* name */, const ItemFacts& facts) {
        return facts.known != nullptr && facts.known->type == type;
    };
    forEachItemThat(itemTableOf(line), isOfType,
                    [&](const FileLines& file, const ReadLine& read, const ItemFacts& facts) {
                        checkValue(line, reporter, file, read, *facts.known);
                    });
    for (const TvSystemFiles& systems : line.tvSystems()) {
        for (const ReadLine& read : systems.file->lines()) {
            const auto* const known = product::findKnownItem({read.section, read.key});
            if (read.use == LineUse::ITEM && read.isNew && known != nullptr &&
                known->type == type) {
                checkValue(line, reporter, *systems.file, read, *known);
            }
        }
    }
}

void checkNumbers(const ProductLine& line, Reporter& reporter) {
    checkType(line, reporter, product::ValueType::INTEGER);
}

void checkSwitches(const ProductLine& line, Reporter& reporter) {
    checkType(line, reporter, product::ValueType::SWITCH);
}

bool isAudioItem(const ReadLine& read) {
    for (const product::ConfigKey& key :
         {product::item::kPanelAudio, product::item::kICAudio, product::item::kAvrAudio}) {
        if (read.section == key.category && read.key == key.key) {
            return true;
        }
    }
    return false;
}

// The auxiliary files of which sound delays are the sum.
std::vector<const FileLines*> audioFilesOf(const ProductLine& line) {
    std::vector<const FileLines*> files;
    for (const auto& [path, namings] : line.namedPaths()) {
        const FileLines* const file = line.find(path);
        const bool isAudio = std::any_of(namings.begin(), namings.end(), [](const Naming& naming) {
            return naming.line == nullptr || isAudioItem(*naming.line);
        });
        if (file != nullptr && file->format() == FileFormat::AUXILIARY && isAudio) {
            files.push_back(file);
        }
    }
    return files;
}

void checkDelays(const ProductLine& line, Reporter& reporter) {
    const std::vector<const FileLines*> files = audioFilesOf(line);
    const auto isNumber = [](const ReadLine& read) { return isDecimalIn(trimmed(read.value), {}); };
    std::set<std::string_view> numbers;  // keys that are a number in some file
    for (const FileLines* const file : files) {
        for (const ReadLine& read : file->lines()) {
            if (read.use == LineUse::ITEM && isNumber(read)) {
                numbers.insert(read.key);
            }
        }
    }
    for (const FileLines* const file : files) {
        for (const ReadLine& read : file->lines()) {
            if (!file->counts(read) || isNumber(read)) {
                continue;
            }
            const std::string_view value = trimmed(read.value);
            const bool isMeantAsNumber =
                    numbers.count(read.key) > 0 ||
                    (!value.empty() &&
                     value.find_first_not_of("+-.") == value.find_first_of("0123456789"));
            if (isMeantAsNumber) {
                reporter.report(placeOf(line, *file, read, value.empty() ? "=" : value),
                                "the delay " + std::string(read.section) + " " +
                                        std::string(read.key) + ": " +
                                        problemOf(product::ValueType::INTEGER, value));
            }
        }
    }
}

// The files that the item names, in models and boards. A file that other items name, too, is a
// matter of another rule.
std::vector<const FileLines*> filesOf(const ProductLine& line, const product::ConfigKey& item) {
    std::vector<const FileLines*> files;
    for (const auto& [path, namings] : line.namedPaths()) {
        const FileLines* const file = line.find(path);
        const auto isItem = [&](const Naming& naming) {
            return naming.line != nullptr && naming.line->section == item.category &&
                   naming.line->key == item.key;
        };
        if (file != nullptr && file->format() == FileFormat::AUXILIARY && !namings.empty() &&
            std::all_of(namings.begin(), namings.end(), isItem)) {
            files.push_back(file);
        }
    }
    return files;
}

void checkKaraoke(const ProductLine& line, Reporter& reporter) {
    for (const FileLines* const file : filesOf(line, product::item::kKaraoke)) {
        for (const ReadLine& read : file->lines()) {
            const std::string_view value = trimmed(read.value);
            if (file->counts(read) && !isDecimalIn(value, {})) {
                reporter.report(placeOf(line, *file, read, value.empty() ? "=" : value),
                                std::string(read.section) + " " + std::string(read.key) + ": " +
                                        problemOf(product::ValueType::INTEGER, value));
            }
        }
    }
}

constexpr Rule kRules[] = {
        {"item-number", Severity::ERROR, "an item is no decimal number of its range",
         "The getter has no answer for a number out of range. What follows the digits does not "
         "count, and a text without digits, such as the hexadecimal 0x1, is 0.",
         "[PowerOnMode]\nModeStatus = 5", "[PowerOnMode]\nModeStatus = 2", checkNumbers},
        {"item-switch", Severity::ERROR, "a switch is neither \"true\" nor \"false\"",
         "Only exactly \"true\" switches on; \"True\", \"1\" and \"yes\" switch off.",
         "[LiveTV]\nDPVR = True", "[LiveTV]\nDPVR = true", checkSwitches},
        {"delay-number", Severity::ERROR, "a sound delay is no decimal number of 32 bits",
         "What follows the digits does not count: \"0x10\" is 0 and \"1.5\" is 1. Sound and "
         "picture do not fit together.",
         "HDMI_DELAY = 0x10", "HDMI_DELAY = 16", checkDelays},
        {"karaoke-number", Severity::WARNING, "a value of a karaoke file is no decimal number",
         "Clients get numbers of this file only: getKaraokeConfig answers 0 for a text and the "
         "digits at the beginning of a number that goes on.",
         "[MIC]\nMIC_COUNT = 0x2", "[MIC]\nMIC_COUNT = 2", checkKaraoke},
};

}  // namespace

RuleFamily itemValues() {
    return {"item-values", "Values that their getters cannot use", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
