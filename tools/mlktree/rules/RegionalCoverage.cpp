// Rules about what a set has for the countries that it offers.

#include <algorithm>
#include <iterator>
#include <set>

#include "common/Decimal.h"
#include "common/Paths.h"
#include "projectconfigs/KnownItems.h"
#include "regional/RegionalNames.h"
#include "tools/mlktree/CountryBlocks.h"
#include "tools/mlktree/CountryNames.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/Regional.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;
namespace element = product::element;

// Fewer missing countries are reported one by one.
constexpr size_t kMostSeparate = 5;

// The first block that a country finds: the one whose name contains its own.
const CountryBlock* blockFoundBy(const std::vector<CountryBlock>& blocks, std::string_view name) {
    const auto found = std::find_if(blocks.begin(), blocks.end(), [name](const CountryBlock& b) {
        return b.country().find(name) != std::string_view::npos;
    });
    return found != blocks.end() ? &*found : nullptr;
}

const CountryBlock* blockOf(const std::vector<CountryBlock>& blocks, std::string_view name) {
    const auto found = std::find_if(blocks.begin(), blocks.end(),
                                    [name](const CountryBlock& b) { return b.country() == name; });
    return found != blocks.end() ? &*found : nullptr;
}

std::string_view textOf(const CountryBlock& block, const char* name) {
    const ReadLine* const read = block.find(name);
    return read != nullptr ? read->value : std::string_view();
}

bool bringTheSame(const CountryBlock& one, const CountryBlock& other) {
    return textOf(one, element::kSystemOfCountry) == textOf(other, element::kSystemOfCountry) &&
           textOf(one, element::kFeaturesOfCountry) == textOf(other, element::kFeaturesOfCountry);
}

void checkShadowed(const ProductLine& line, Reporter& reporter) {
    std::set<const FileLines*> seen;
    for (const TvSystemFiles& files : line.tvSystems()) {
        if (!isUsable(files.map) || !seen.insert(files.map).second) {
            continue;
        }
        const std::vector<CountryBlock> blocks = blocksOf(*files.map);
        std::set<std::string_view> countries;
        for (const CountryBlock& block : blocks) {
            if (!countryOf(block.country()) || !countries.insert(block.country()).second) {
                continue;
            }
            const CountryBlock& found = *blockFoundBy(blocks, block.country());
            if (found.country() == block.country() || bringTheSame(found, block)) {
                continue;
            }
            reporter.report(
                    placeOf(line, *files.map, *block.begin),
                    quoted(block.country()) + " finds the record of " + quoted(found.country()) +
                            ", whose name contains it; put its own record before that one",
                    {{placeOf(line, *files.map, *found.begin), "the record that it finds"}});
        }
    }
}

constexpr const auto& kListItem = product::item::kCountries;

bool hasListItem(const FileLines& file) {
    const ReadLine* const item = file.find(kListItem.category, kListItem.key);
    return item != nullptr && !trimmed(item->value).empty();
}

// True if a board or a TV system names the country list of sets of that model.
bool isReplaced(const ProductLine& line, const Model& model) {
    return std::any_of(line.boards().begin(), line.boards().end(),
                       [](const Board& board) {
                           return board.file != nullptr && hasListItem(*board.file);
                       }) ||
           std::any_of(line.tvSystems().begin(), line.tvSystems().end(),
                       [&](const TvSystemFiles& systems) {
                           const std::vector<Naming>& namings = line.namings(systems.file->path());
                           return hasListItem(*systems.file) &&
                                  std::any_of(namings.begin(), namings.end(),
                                              [&](const Naming& naming) {
                                                  return naming.file == model.file;
                                              });
                       });
}

void checkEmpty(const ProductLine& line, Reporter& reporter) {
    for (const auto& [path, list] : line.files()) {
        const bool isList = list->format() == FileFormat::COUNTRY_LIST;
        if (isList && isUsable(list.get()) && !hasCountries(*list)) {
            reporter.report(placeOf(*list), "the list has no country");
        }
    }
    std::set<const FileLines*> seen;
    for (const Model& model : line.models()) {
        if (model.file == nullptr || !seen.insert(model.file).second || isReplaced(line, model)) {
            continue;
        }
        const ReadLine* const item = model.file->find(kListItem.category, kListItem.key);
        if (item != nullptr && trimmed(item->value).empty()) {
            reporter.report(placeOf(line, *model.file, *item),
                            "no country list is named, and the set has no country to choose");
        }
    }
}

// Countries of a list that a map lacks.
struct Missing {
    const ReadLine* listLine;
    const CountryBlock* other;  // what the country finds instead; null for nothing
};

template <typename IsMissing>
std::vector<Missing> missingFrom(const FileLines& list, const FileLines& map,
                                 const std::vector<CountryBlock>& blocks, IsMissing isMissing) {
    // Names that are wrong in the map stand for some country: those are reported there.
    std::vector<std::string_view> names;
    names.reserve(blocks.size());
    for (const CountryBlock& block : blocks) {
        names.push_back(block.country());
    }
    const std::set<std::string_view> misspelt = countriesMeantBy(names);
    std::vector<Missing> all;
    std::set<std::string_view> seen;
    for (const ReadLine& read : list.lines()) {
        const bool isCountry = read.use == LineUse::ITEM && countryOf(read.key) &&
                               *countryOf(read.key) != product::kNoCountry;
        if (isCountry && misspelt.count(read.key) == 0 && seen.insert(read.key).second &&
            isMissing(read.key)) {
            all.push_back({&read, blockFoundBy(blocks, read.key)});
        }
    }
    // A block that is ignored has a finding, and may be the one that is missing here.
    return all.size() > countIgnoredBlocks(map) ? all : std::vector<Missing>();
}

std::string andMore(const std::vector<Missing>& all, size_t i) {
    return all.size() > kMostSeparate && i == 0
                   ? ", and neither have " + std::to_string(all.size() - 1) + " others of this list"
                   : std::string();
}

size_t reportedOf(const std::vector<Missing>& all) {
    return all.size() > kMostSeparate ? 1 : all.size();
}

void checkRecords(const ProductLine& line, Reporter& reporter) {
    std::set<std::pair<const FileLines*, const FileLines*>> seen;
    for (const RegionalSet& set : regionalSetsOf(line)) {
        const FileLines* const map = set.systems != nullptr ? set.systems->map : nullptr;
        if (!isUsable(set.list) || !isUsable(map) || !seen.insert({set.list, map}).second ||
            namesOtherMap(*set.systems)) {
            continue;
        }
        const std::vector<CountryBlock> blocks = blocksOf(*map);
        if (blocks.empty()) {
            continue;
        }
        const std::vector<Missing> all = missingFrom(
                *set.list, *map, blocks,
                [&](std::string_view name) { return blockOf(blocks, name) == nullptr; });
        for (size_t i = 0; i < reportedOf(all); ++i) {
            const ReadLine& read = *all[i].listLine;
            std::string message = quoted(read.key) + " has no record in " + map->path();
            std::vector<Related> related;
            if (all[i].other != nullptr) {
                message += " and finds that of " + quoted(all[i].other->country()) +
                           ", whose name contains it";
                related.push_back({placeOf(line, *map, *all[i].other->begin), "what it finds"});
            }
            reporter.report(placeOf(line, *set.list, read, read.key), message + andMore(all, i),
                            std::move(related));
        }
    }
}

bool hasPlan(const std::vector<CountryBlock>& blocks, std::string_view country) {
    return std::any_of(blocks.begin(), blocks.end(), [country](const CountryBlock& block) {
        // An element that is ignored may be a plan: it has a finding of its own.
        return block.country() == country &&
               std::any_of(block.elements.begin(), block.elements.end(), [](const ReadLine* read) {
                   return read->key != element::kCountryName && !read->value.empty();
               });
    });
}

void checkPlans(const ProductLine& line, Reporter& reporter) {
    std::set<std::pair<const FileLines*, const FileLines*>> seen;
    for (const RegionalSet& set : regionalSetsOf(line)) {
        const FileLines* const map = set.plans != nullptr ? set.plans->map : nullptr;
        if (!isUsable(set.list) || !isUsable(map) || !seen.insert({set.list, map}).second) {
            continue;
        }
        const std::vector<CountryBlock> blocks = blocksOf(*map);
        if (blocks.empty()) {
            continue;
        }
        const std::vector<Missing> all =
                missingFrom(*set.list, *map, blocks,
                            [&](std::string_view name) { return !hasPlan(blocks, name); });
        for (size_t i = 0; i < reportedOf(all); ++i) {
            const ReadLine& read = *all[i].listLine;
            std::vector<Related> related;
            if (const CountryBlock* const block = blockOf(blocks, read.key)) {
                related.push_back({placeOf(line, *map, *block->begin), "its block has no plan"});
            }
            reporter.report(
                    placeOf(line, *set.list, read, read.key),
                    quoted(read.key) + " has no channel plan in " + map->path() + andMore(all, i),
                    std::move(related));
        }
    }
}

constexpr Rule kRules[] = {
        {"empty-list", Severity::ERROR, "a model has no country list, or one without a country",
         "The menu offers no country, so that nobody can choose one.", "(an empty file)",
         "GERMANY,DE", checkEmpty},
        {"shadowed-country", Severity::ERROR,
         "a country finds the record of another one whose name contains its own",
         "A country uses the first record of the map whose name contains the country's name, even "
         "if a later record has exactly this name: the set takes over the TV system and the TV "
         "features of another country.",
         "the record of ROMANIA stands before that of OMAN",
         "the record of OMAN stands before that of ROMANIA", checkShadowed},
        {"country-without-record", Severity::ERROR,
         "a country of a model's list has no record in the model's country map",
         "When somebody chooses the country, the set saves it and changes nothing: TV features and "
         "items of the former country stay. If the name of another country contains its name, the "
         "set takes over that one's.",
         "GERMANY,DE\nSWEDEN,SE        (the map has a record of GERMANY only)",
         "GERMANY,DE                  (or a record of SWEDEN in the map)", checkRecords},
        {"country-without-plan", Severity::ERROR,
         "a country of a model's list has no channel plan of any kind",
         "A scan in this country has no channels to look at, over the air and by cable.",
         "GERMANY,DE\nSWEDEN,SE        (the map of channel plans has a block of GERMANY only)",
         "GERMANY,DE                  (or a block of SWEDEN in the map)", checkPlans},
};

}  // namespace

RuleFamily coverage() {
    return {"coverage", "What a set has for its countries", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
