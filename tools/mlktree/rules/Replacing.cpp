// Rules about lines of which only one counts.

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "common/Paths.h"
#include "projectconfigs/KnownItems.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/LineRemarks.h"
#include "tools/mlktree/rules/Meaning.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;
using product::fileNameOf;

constexpr size_t kMostRelated = 5;

std::string nameOfItem(const ReadLine& read) {
    return read.section.empty() ? std::string(read.key)
                                : std::string(read.section) + " " + std::string(read.key);
}

// The items of which the file has several of one name, in their order.
std::vector<const ReadLine*> linesOfKeysTwice(const FileLines& file) {
    std::vector<const ReadLine*> lines;
    for (const ReadLine* const read : file.outdone()) {
        for (const ReadLine* const each : {read, file.find(read->section, read->key)}) {
            const bool isComment =
                    file.format() == FileFormat::CUSTOMER && looksLikeComment(each->text);
            if (!isComment) {
                lines.push_back(each);
            }
        }
    }
    std::sort(lines.begin(), lines.end());
    lines.erase(std::unique(lines.begin(), lines.end()), lines.end());
    return lines;
}

// A line whose key stands above, too.
struct Repeat {
    const ReadLine* line;
    const ReadLine* former;
};

void reportRepeat(const ProductLine& line, Reporter& reporter, const FileLines& file,
                  const Repeat& repeat) {
    const ReadLine& read = *repeat.line;
    const ReadLine& former = *repeat.former;
    const bool isLast = file.find(read.section, read.key)->number > former.number;
    const std::string_view dead = isLast ? former.value : read.value;
    const std::string_view alive = file.find(read.section, read.key)->value;
    reporter.report(placeOf(line, file, read, read.key),
                    quoted(read.key) + " stands twice" +
                            (dead == alive ? " with one value; remove one of the lines"
                                           : std::string("; the ") + (isLast ? "lower" : "upper") +
                                                     " line counts: " + quoted(alive) + ", not " +
                                                     quoted(dead)),
                    {{placeOf(line, file, former, former.key), "the other line"}});
}

// The second block of lines of one section, and its keys that the first one has, too.
void reportBlock(const ProductLine& line, Reporter& reporter, const FileLines& file,
                 const ReadLine* again, const std::vector<Repeat>& repeats) {
    constexpr size_t kFewest = 3;
    if (again == nullptr || repeats.size() < kFewest) {
        for (const Repeat& repeat : repeats) {
            reportRepeat(line, reporter, file, repeat);
        }
        return;
    }
    const ReadLine& first = *file.sections().at(again->section);
    const ReadLine& former = *repeats.front().former;
    const bool isLast = file.find(former.section, former.key) != &former;
    std::vector<Related> related = {
            {placeOf(line, file, first, first.section), "the section stands here first"}};
    for (size_t i = 0; i < repeats.size() && related.size() <= kMostRelated; ++i) {
        const ReadLine& read = *repeats[i].line;
        related.push_back({placeOf(line, file, read, read.key), "this key stands twice"});
    }
    reporter.report(placeOf(line, file, *again, again->section),
                    "the section " + std::string(again->section) + " stands twice, and " +
                            counted(repeats.size(), "key", "keys") + " of it; the " +
                            (isLast ? "lower" : "upper") + " lines count",
                    std::move(related));
}

// The lines of model, board and auxiliary files that begin a section, or look so: keys below the
// latter are not where their author put them.
std::vector<bool> sectionContents(const ProductLine& line) {
    return contentsThat(line, [](FileFormat format, const ReadLine& read) {
        const bool hasSections = format == FileFormat::PROJECT || format == FileFormat::AUXILIARY;
        return hasSections && (read.use == LineUse::SECTION || isBrokenSection(read));
    });
}

void checkKeysTwiceIn(const ProductLine& line, Reporter& reporter, const FileLines& file,
                      const std::vector<bool>& sections) {
    std::vector<const ReadLine*> lines = linesOfKeysTwice(file);
    const std::vector<const ReadLine*> begins = linesThat(file, sections);
    lines.insert(lines.end(), begins.begin(), begins.end());
    std::sort(lines.begin(), lines.end());
    lines.erase(std::unique(lines.begin(), lines.end()), lines.end());

    std::map<std::pair<std::string_view, std::string_view>, const ReadLine*> seen;
    std::vector<Repeat> repeats;  // since the last section line
    const ReadLine* again = nullptr;
    bool isBroken = false;
    for (const ReadLine* const each : lines) {
        const ReadLine& read = *each;
        if (read.use == LineUse::SECTION) {
            reportBlock(line, reporter, file, again, repeats);
            repeats.clear();
            again = file.sections().at(read.section) != each ? each : nullptr;
            isBroken = false;
            continue;
        }
        isBroken |= sections[file.contentOf(read)];
        if (read.use != LineUse::ITEM || isBroken) {
            continue;
        }
        const auto [former, isNew] = seen.try_emplace({read.section, read.key}, each);
        if (isNew) {
            continue;
        }
        const ReadLine* const counts = file.find(read.section, read.key);
        repeats.push_back({each, former->second});
        former->second = counts->number > former->second->number ? each : former->second;
    }
    reportBlock(line, reporter, file, again, repeats);
}

void checkKeysTwice(const ProductLine& line, Reporter& reporter) {
    std::vector<bool> sections;  // made when the first file needs it
    for (const auto& [path, file] : line.files()) {
        const bool hasItems =
                file->format() == FileFormat::PROJECT || file->format() == FileFormat::AUXILIARY ||
                file->format() == FileFormat::TV_FEATURES || file->format() == FileFormat::CUSTOMER;
        if (!hasItems || file->outdone().empty()) {
            continue;
        }
        if (sections.empty()) {
            sections = sectionContents(line);
        }
        checkKeysTwiceIn(line, reporter, *file, sections);
    }
}

void checkBoards(const ProductLine& line, Reporter& reporter) {
    std::set<const FileLines*> modelFiles;
    for (const Model& model : line.models()) {
        modelFiles.insert(model.file);
    }
    for (const Board& board : line.boards()) {
        if (board.file == nullptr || modelFiles.count(board.file) > 0) {
            continue;  // a board file that is a model's is another finding
        }
        for (const ReadLine& read : board.file->lines()) {
            if (!board.file->counts(read)) {
                continue;
            }
            std::vector<Related> related;
            std::set<const FileLines*> files;
            for (const Model& model : line.models()) {
                const ReadLine* const other =
                        model.file != nullptr ? model.file->find(read.section, read.key) : nullptr;
                if (other != nullptr && other->value != read.value &&
                    files.insert(model.file).second && related.size() < kMostRelated) {
                    related.push_back({placeOf(line, *model.file, *other, other->value),
                                       "replaced: " + quoted(other->value)});
                }
            }
            if (!files.empty()) {
                reporter.report(placeOf(line, *board.file, read, read.value),
                                "the board replaces " + nameOfItem(read) + " of " +
                                        counted(files.size(), "model file", "model files"),
                                std::move(related));
            }
        }
    }
}

// The models whose TV system file this is.
std::vector<const Model*> modelsOf(const ProductLine& line, const FileLines& systems) {
    std::set<const FileLines*> named;
    for (const Naming& naming : line.namings(systems.path())) {
        named.insert(naming.file);
    }
    named.erase(nullptr);
    std::vector<const Model*> models;
    for (const Model& model : line.models()) {
        // Models that share a file have the same items.
        if (named.erase(model.file) > 0) {
            models.push_back(&model);
        }
    }
    return models;
}

void checkCountries(const ProductLine& line, Reporter& reporter) {
    for (const TvSystemFiles& systems : line.tvSystems()) {
        const std::vector<const Model*> models = modelsOf(line, *systems.file);
        const ReadLine* first = nullptr;
        std::vector<Related> related;
        std::set<std::string> names;
        for (const ReadLine& read : systems.file->lines()) {
            if (read.use != LineUse::ITEM || read.section.empty()) {
                continue;
            }
            const std::string name = nameOfItem(read);
            const auto model = std::find_if(models.begin(), models.end(), [&](const Model* each) {
                return each->file->find(read.section, read.key) != nullptr;
            });
            if (model == models.end() || !names.insert(name).second) {
                continue;
            }
            first = first == nullptr ? &read : first;
            if (related.size() < kMostRelated) {
                const FileLines& file = *(*model)->file;
                const ReadLine& other = *file.find(read.section, read.key);
                related.push_back({placeOf(line, file, other, other.value), name + " is replaced"});
            }
        }
        if (first != nullptr) {
            reporter.report(placeOf(line, *systems.file, *first),
                            "the TV systems of this file replace " +
                                    counted(names.size(), "item", "items") + " of model files",
                            std::move(related));
        }
    }
}

// Audio files are known by their names: of two with one name, the first that is loaded stays.
void checkAudioNames(const ProductLine& line, Reporter& reporter) {
    const product::ConfigKey keys[] = {product::item::kPanelAudio, product::item::kICAudio,
                                       product::item::kAvrAudio};
    std::set<const ReadLine*> reported;
    for (const Model& model : line.models()) {
        for (const Board& board : line.boards()) {
            std::map<std::string_view, LayeredItem> loaded;
            for (const product::ConfigKey& key : keys) {
                const LayeredItem item = line.item(model, board, key.category, key.key);
                if (!item || item.line->value.empty()) {
                    continue;
                }
                const auto [first, isNew] = loaded.try_emplace(fileNameOf(item.line->value), item);
                if (isNew || !reported.insert(item.line).second) {
                    continue;
                }
                const bool isSame = first->second.line->value == item.line->value;
                reporter.report(
                        placeOf(line, *item.file, *item.line, item.line->value),
                        isSame ? "the same file as " + std::string(first->second.line->key) +
                                         ", so its delays count twice"
                               : "another audio file is named " + quoted(first->first) +
                                         ", too; files are known by their names without folders, "
                                         "and this one is not loaded",
                        {{placeOf(line, *first->second.file, *first->second.line,
                                  first->second.line->value),
                          "the file of that name that counts"}});
            }
        }
    }
}

constexpr Rule kRules[] = {
        {"key-twice", Severity::WARNING, "a key stands twice in one section",
         "Only one line counts: the lower one in customer, model and board files, the upper one in "
         "audio, karaoke, key, DDC/CI and TV feature files. A change of the other line does "
         "nothing.",
         "[PANEL]\nm_nWidth = 1920\nm_nWidth = 3840", "[PANEL]\nm_nWidth = 3840", checkKeysTwice},
        {"board-replaces", Severity::NOTE, "a board file replaces an item of model files",
         "A board file holds for every model, so its value wins over each model's.",
         "[DIGITAL_AMPLIFIER_CFG]      (of a board file)\nST_AMP_ADDR0 = 0x35",
         "the item in the board file alone, or in the model files alone", checkBoards},
        {"country-replaces", Severity::NOTE, "a TV system replaces an item of model files",
         "The value of the model file holds until the set knows its country, and for countries "
         "without a TV system.",
         "<Item category=\"[LiveTV]\" key=\"SubtitleDefault\" value=\"off\"/>",
         "an item that all TV systems of the file set, and a model's value that serves as default",
         checkCountries},
        {"same-audio-name", Severity::ERROR, "two audio files of a set have one name",
         "Audio files are known by their names without folders. The second one is not loaded, and "
         "the delays of the first count twice.",
         "AUDIO_CONFIG_PATH = /tvconfigs/audio/panel/delay.ini\n"
         "AUDIO_CONFIG_IC_PATH = /tvconfigs/audio/ic/delay.ini",
         "AUDIO_CONFIG_PATH = /tvconfigs/audio/panel_delay.ini\n"
         "AUDIO_CONFIG_IC_PATH = /tvconfigs/audio/ic_delay.ini",
         checkAudioNames},
};

}  // namespace

RuleFamily replacing() {
    return {"replacing", "Lines of which only one counts", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
