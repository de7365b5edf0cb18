// Rules about items that a getter reads and a model lacks.

#include <algorithm>
#include <iterator>
#include <map>

#include "common/Paths.h"
#include "host/text/Utf8.h"
#include "regional/RegionalNames.h"
#include "tools/mlktree/Nearest.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/LineRemarks.h"
#include "tools/mlktree/rules/Meaning.h"
#include "tvconfigs/TvConfigItems.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

// True if a line that other rules report was probably meant to be this item, or its section.
bool isMeantBy(const ReadLine& read, const ItemTable& table, const product::ConfigKey& name) {
    if (read.use == LineUse::NOTHING) {
        return false;
    }
    const bool isBroken = isBrokenSection(read) || beginsWith(read.text, kByteOrderMark) ||
                          (read.use == LineUse::SECTION && !isWholeSection(read.section));
    const std::string_view section = name.category.substr(1, name.category.size() - 2);
    if (isBroken && lowerCase(read.text).find(lowerCase(section)) != std::string::npos) {
        return true;
    }
    if (read.use == LineUse::SECTION) {
        const auto facts = table.sections.find(read.section);
        return facts != table.sections.end() && facts->second.meant == name.category;
    }
    const ItemFacts* const facts = table.find({read.section, read.key});
    const auto* const known =
            facts != nullptr ? facts->known : product::findKnownItem({read.section, read.key});
    if (known != nullptr) {
        return false;  // meant for itself: several sections have the key
    }
    return (facts != nullptr && facts->meant == name.key && read.section == name.category) ||
           lowerCase(trimmed(read.text.substr(0, read.text.find('=')))).find(lowerCase(name.key)) ==
                   0;
}

// Takes out the files of which some line was meant to be the item.
void dropMeant(const ProductLine& line, const product::ConfigKey& name,
               std::vector<const ItemFile*>& files) {
    if (files.empty()) {
        return;
    }
    const ItemTable& table = itemTableOf(line);
    const std::vector<bool> meaning =
            contentsThat(line, [&](FileFormat format, const ReadLine& read) {
                return format == FileFormat::PROJECT && isMeantBy(read, table, name);
            });
    const auto isMeantSomewhere = [&](const ItemFile* item) {
        return !linesThat(*item->file, meaning).empty();
    };
    files.erase(std::remove_if(files.begin(), files.end(), isMeantSomewhere), files.end());
}

// The models that have an item, and those that lack it without another finding.
struct Spread {
    size_t having = 0;
    std::vector<const ItemFile*> lacking;
};

Spread spreadOf(const std::vector<ItemFile>& files, const product::ConfigKey& name) {
    Spread spread;
    size_t boards = 0;
    size_t boardsHaving = 0;
    for (const ItemFile& item : files) {
        const bool hasItem = item.file->find(name.category, name.key) != nullptr;
        if (item.isBoard) {
            ++boards;
            boardsHaving += hasItem ? 1 : 0;
        } else if (hasItem) {
            ++spread.having;
        } else {
            spread.lacking.push_back(&item);
        }
    }
    if (boards > 0 && boardsHaving == boards) {
        spread.lacking.clear();
    }
    return spread;
}

// By the rows of kKnownItems.
const std::vector<Spread>& spreadsOf(const ProductLine& line) {
    const std::vector<ItemFile>& files = itemTableOf(line).files;
    return line.memo().get<std::vector<Spread>>([&] {
        std::vector<Spread> spreads;
        for (const product::KnownItem& known : product::kKnownItems) {
            spreads.push_back(spreadOf(files, known.name));
        }
        return spreads;
    });
}

// What a model lacks of one section.
struct Lack {
    std::string_view section;
    std::string keys;
    size_t having = 0;
};

// What a model lacks.
struct Lacks {
    std::vector<Lack> sections;
    size_t items = 0;
};

enum class ModelSize {
    ANY,
    USUAL, /**< has most of the items that the others have */
    SMALL, /**< has few of them: another kind of model */
};

bool isOfSize(const FileLines& file, const Lacks& lacks, ModelSize size) {
    const auto has =
            std::count_if(std::begin(product::kKnownItems), std::end(product::kKnownItems),
                          [&](const product::KnownItem& known) {
                              return file.find(known.name.category, known.name.key) != nullptr;
                          });
    const bool isSmall = lacks.items > static_cast<size_t>(has);
    return size == ModelSize::ANY || isSmall == (size == ModelSize::SMALL);
}

void reportLacks(const ProductLine& line, Reporter& reporter, const FileLines& file,
                 const Lacks& lacks) {
    constexpr size_t kMostSections = 4;
    const auto others = [](const Lack& lack) {
        return ", which " + counted(lack.having, "other model has", "other models have");
    };
    if (lacks.sections.size() > kMostSections) {
        const Lack& first = lacks.sections.front();
        const size_t named =
                static_cast<size_t>(std::count(first.keys.begin(), first.keys.end(), ',')) + 1;
        reporter.report(placeOf(file), "the model has no " + std::string(first.section) + " " +
                                               first.keys + ", and " +
                                               std::to_string(lacks.items - named) + " items of " +
                                               std::to_string(lacks.sections.size() - 1) +
                                               " other sections are missing, too" + others(first));
        return;
    }
    for (const Lack& lack : lacks.sections) {
        const auto first = file.sections().find(lack.section);
        const Place place = first != file.sections().end()
                                    ? placeOf(line, file, *first->second, lack.section)
                                    : placeOf(file);
        reporter.report(place, "the model has no " + std::string(lack.section) + " " + lack.keys +
                                       others(lack));
    }
}

// Reports the items that `isUnusual` asks for, one finding a section of a file; of a file that
// lacks many, one.
template <typename IsUnusual>
void checkItems(const ProductLine& line, Reporter& reporter, ModelSize size,
                const IsUnusual& isUnusual) {
    std::map<std::string_view, std::pair<const FileLines*, Lacks>> all;  // by path
    for (size_t i = 0; i < std::size(product::kKnownItems); ++i) {
        const product::ConfigKey& name = product::kKnownItems[i].name;
        const Spread& spread = spreadsOf(line)[i];
        if (!isUnusual(spread)) {
            continue;
        }
        std::vector<const ItemFile*> lacking = spread.lacking;
        dropMeant(line, name, lacking);
        for (const ItemFile* const item : lacking) {
            auto& [file, lacks] = all[item->file->path()];
            file = item->file;
            ++lacks.items;
            const auto same =
                    std::find_if(lacks.sections.begin(), lacks.sections.end(),
                                 [&](const Lack& lack) { return lack.section == name.category; });
            Lack& lack = same != lacks.sections.end() ? *same : lacks.sections.emplace_back();
            lack.section = name.category;
            lack.keys += (lack.keys.empty() ? "" : ", ") + std::string(name.key);
            lack.having = std::max(lack.having, spread.having);
        }
    }
    for (const auto& [path, found] : all) {
        const auto& [file, lacks] = found;
        if (isOfSize(*file, lacks, size)) {
            reportLacks(line, reporter, *file, lacks);
        }
    }
}

constexpr size_t kFewestOthers = 3;

// One model alone lacks what all others have.
bool isAlone(const Spread& spread) {
    return spread.lacking.size() == 1 && spread.having >= kFewestOthers;
}

void checkAlone(const ProductLine& line, Reporter& reporter) {
    checkItems(line, reporter, ModelSize::USUAL, isAlone);
}

void checkMost(const ProductLine& line, Reporter& reporter) {
    checkItems(line, reporter, ModelSize::SMALL, isAlone);
    checkItems(line, reporter, ModelSize::ANY, [](const Spread& spread) {
        return !isAlone(spread) && spread.having > spread.lacking.size();
    });
}

// True if a country may bring its TV feature file for sets of that model.
bool hasFeaturesOfCountries(const ProductLine& line, const FileLines& model) {
    return std::any_of(
            line.tvSystems().begin(), line.tvSystems().end(), [&](const TvSystemFiles& systems) {
                const std::vector<Naming>& namings = line.namings(systems.file->path());
                return systems.map != nullptr &&
                       systems.map->find("", product::element::kFeaturesOfCountry) != nullptr &&
                       std::any_of(namings.begin(), namings.end(),
                                   [&](const Naming& naming) { return naming.file == &model; });
            });
}

void checkFeatures(const ProductLine& line, Reporter& reporter) {
    const product::ConfigKey& name = product::kTvConfigItem;
    const Spread spread = spreadOf(itemTableOf(line).files, name);
    if (isAlone(spread)) {
        return;  // another rule reports it
    }
    const std::string usual = "tvconfigs" + std::string(product::kDefaultTvConfigFile);
    const bool hasUsual = product::pathExists(line.tree().host(usual));
    std::vector<const ItemFile*> lacking = spread.lacking;
    dropMeant(line, name, lacking);
    for (const ItemFile* const item : lacking) {
        const bool isOfCountry = hasFeaturesOfCountries(line, *item->file);
        if (hasUsual && !isOfCountry) {
            continue;
        }
        const auto section = item->file->sections().find(name.category);
        const Place place = section != item->file->sections().end()
                                    ? placeOf(line, *item->file, *section->second, name.category)
                                    : placeOf(*item->file);
        reporter.report(place,
                        "the model has no " + std::string(name.category) + " " +
                                std::string(name.key) + ": " +
                                (isOfCountry ? "the TV feature files of the countries are not used"
                                             : "all features come from properties, because there "
                                               "is no /" +
                                                       usual + " either"));
    }
}

constexpr Rule kRules[] = {
        {"missing-item", Severity::WARNING,
         "a model lacks an item that all other models have, at least three",
         "The getter has no answer for this model. If that is right, an empty value says so.",
         "a model without [PowerOnMode] ModeStatus, which six others have",
         "[PowerOnMode]\nModeStatus = 0", checkAlone},
        {"rare-lack", Severity::NOTE, "a model lacks an item that most models have",
         "The getter has no answer for this model. A model that lacks most items of the others is "
         "another kind of model, and also a note.",
         "two of seven models without [IRFilter] IR_Filter", "[IRFilter]\nIR_Filter =", checkMost},
        {"missing-tv-config", Severity::ERROR, "a model has no TV feature file",
         "A country replaces the path of the model's TV feature file and adds none. Without a file "
         "all features come from properties, and most are off.",
         "[COUNTRY]\ntvSysMap = /tvconfigs/tvsysmap/systems.xml      (no [LiveTV] TvConfig)",
         "[LiveTV]\nTvConfig = /tvconfigs/tv/tv_eu.config", checkFeatures},
};

}  // namespace

RuleFamily missingItems() {
    return {"missing-items", "Items that a model lacks", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
