// Rules about the country that a set has.

#include <algorithm>
#include <iterator>

#include "common/Decimal.h"
#include "common/Paths.h"
#include "projectconfigs/KnownItems.h"
#include "projectconfigs/ProjectID.h"
#include "regional/RegionalData.h"
#include "regional/RegionalNames.h"
#include "regional/TvSysMapCfgHolder.h"
#include "tools/mlktree/CountryBlocks.h"
#include "tools/mlktree/CountryNames.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/FindingGroups.h"
#include "tools/mlktree/rules/Regional.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

// The model of this set; null if the tree has none.
const Model* modelOfSet(const ProductLine& line) {
    const std::string& folder = line.tree().partitions().impdata;
    if (!product::pathExists(folder + "/project_id.bin")) {
        return nullptr;  // the service would create the file
    }
    const auto index = static_cast<int32_t>(product::ProjectID(folder, 0).Get());
    const auto found = std::find_if(line.models().begin(), line.models().end(),
                                    [&](const Model& m) { return m.counts && m.index == index; });
    return found != line.models().end() ? &*found : nullptr;
}

const Board* boardOfSet(const ProductLine& line) {
    for (const Board& board : line.boards()) {
        if (board.file != nullptr ? board.file->path() == line.boardOfSet()
                                  : line.boardOfSet().empty()) {
            return &board;
        }
    }
    return line.boards().empty() ? nullptr : &line.boards().front();
}

std::string nameOfCountry(int32_t value) {
    std::string name;
    product::countryNames().firstNameOf(value, name);
    return name;
}

// True if a list has the country, or a name that is wrong, and reported, but means it.
bool offers(const FileLines& list, const std::string& country) {
    std::vector<std::string_view> names;
    for (const ReadLine& read : list.lines()) {
        if (read.use == LineUse::ITEM) {
            names.push_back(read.key);
        }
    }
    const bool isSpoilt = !list.lines().empty() && list.lines().front().hasNul;
    return isSpoilt || std::find(names.begin(), names.end(), country) != names.end() ||
           countriesMeantBy(names).count(country) > 0 ||
           std::any_of(names.begin(), names.end(), [&](std::string_view name) {
               return beginsWith(name, country) && !countryOf(name);
           });
}

Place placeOfCountry(const ProductLine& line, const std::string& path) {
    const size_t lines = line.sources().lines(path).size();
    for (size_t i = 1; i <= lines; ++i) {
        const std::string_view text = line.sources().line(path, i);
        const size_t found = text.find(product::kCountryIdKeyword);
        if (found != std::string_view::npos) {
            return {path, i, found + 1};
        }
    }
    return {path, 0, 0};
}

// The file that an item of this set names; null if it names none that the service reads.
const FileLines* fileOfSet(const ProductLine& line, const Model& model, const Board& board,
                           const product::ConfigKey& key) {
    const LayeredItem item = line.item(model, board, key.category, key.key);
    return item && !item.line->value.empty()
                   ? line.find(line.tree().relative(line.tree().hostOfWritten(item.line->value)))
                   : nullptr;
}

// What is wrong with the saved country; empty if nothing is.
std::string mistakeOfSaved(int32_t saved, const FileLines* list) {
    const std::string country = nameOfCountry(saved);
    if (saved == product::kNoCountry) {
        return "the file has no country, and the set starts in none";
    }
    if (country.empty()) {
        return "no country has the number " + std::to_string(saved);
    }
    const bool isOffered = !isUsable(list) || !hasCountries(*list) || offers(*list, country);
    return isOffered ? ""
                     : "the set is in " + quoted(country) + ", which " + list->path() +
                               " does not offer";
}

void checkSaved(const ProductLine& line, Reporter& reporter) {
    const std::string path = kCountryIdPath;
    const Model* const model = modelOfSet(line);
    const Board* const board = boardOfSet(line);
    // Without the file the service would write one; without TV systems it does not read it.
    if (model == nullptr || board == nullptr || !product::pathExists(line.tree().host(path)) ||
        fileOfSet(line, *model, *board, product::item::kTvSystems) == nullptr) {
        return;
    }
    product::RegionalData data([&line] { return line.tree().partitions(); });
    product::TvSysMapCfgHolder holder(line.tree().partitions(), line.properties(), data);
    holder.parseCountryId();
    std::string mistake = mistakeOfSaved(
            holder.currentCountry(), fileOfSet(line, *model, *board, product::item::kCountries));
    if (!mistake.empty()) {
        reporter.reportIn({"model=" + std::to_string(model->index)}, placeOfCountry(line, path),
                          std::move(mistake));
    }
}

void checkFirst(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const RegionalSet& set : regionalSetsOf(line)) {
        const FileLines* const map = set.systems != nullptr ? set.systems->map : nullptr;
        if (!isUsable(set.list) || !isUsable(map) || !hasCountries(*set.list) ||
            namesOtherMap(*set.systems)) {
            continue;
        }
        const std::vector<CountryBlock> blocks = blocksOf(*map);
        if (blocks.empty() || !countryOf(blocks.front().country())) {
            continue;
        }
        const std::string country(blocks.front().country());
        if (!offers(*set.list, country)) {
            groups.add(country + set.list->path(), placeOf(line, *map, *blocks.front().begin),
                       "a new set starts in " + quoted(country) +
                               ", the first country of the map, which " + set.list->path() +
                               " does not offer");
        }
    }
    groups.report(reporter);
}

constexpr Rule kRules[] = {
        {"saved-country", Severity::WARNING,
         "the country that a set has saved is none that its list offers",
         "The set scans and behaves as in this country, and its menu shows another one or none.",
         "COUNTRY_ID=500", "COUNTRY_ID=14", checkSaved},
        {"first-country", Severity::WARNING,
         "a new set starts in a country that its list does not offer",
         "A set without a saved country takes the first one of the country map and saves it. The "
         "menu cannot show it.",
         "the map begins with GERMANY, the list has only SWEDEN",
         "the map begins with SWEDEN, or the list has GERMANY", checkFirst},
};

}  // namespace

RuleFamily savedCountry() {
    return {"saved-country", "The country of a set", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
