#include "tools/mlktree/rules/Regional.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <tuple>
#include <utility>

#include "projectconfigs/KnownItems.h"
#include "regional/CountryTable.h"
#include "regional/RegionalNames.h"
#include "tools/mlktree/Nearest.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

constexpr std::string_view kInvisible = " \t\r\n";
constexpr std::string_view kNoCountryName = "DEFAULT";

// Names that people use and that share too few letters with the service's.
struct OtherName {
    std::string_view name;
    std::string_view country;
};
constexpr OtherName kOtherNames[] = {
        {"BOSNIA", "BOSNIA_HERZEGOVINA"},
        {"CZECH_REPUBLIC", "CZECH"},
        {"CZECHIA", "CZECH"},
        {"EMIRATES", "UNITED_ARAB_EMIRATES"},
        {"ENGLAND", "UNITED_KINGDOM"},
        {"GB", "UNITED_KINGDOM"},
        {"GREAT_BRITAIN", "UNITED_KINGDOM"},
        {"HOLLAND", "NETHERLANDS"},
        {"KOREA", "SOUTH_KOREA"},
        {"LAOS", "LAO_PDR"},
        {"MACEDONIA", "NORTH_MACEDONIA"},
        {"RUSSIAN_FEDERATION", "RUSSIA"},
        {"SALVADOR", "EL_SALVADOR"},
        {"TRINIDAD_AND_TOBAGO", "TRINIDAD"},
        {"TURKIYE", "TURKEY"},
        {"UAE", "UNITED_ARAB_EMIRATES"},
        {"UK", "UNITED_KINGDOM"},
        {"UNITED_STATES", "USA"},
        {"UNITED_STATES_OF_AMERICA", "USA"},
        {"US", "USA"},
};

std::string_view fileNamed(const ProductLine& line, const Model& model, const Board& board,
                           const product::ConfigKey& key) {
    const LayeredItem item = line.item(model, board, key.category, key.key);
    return item ? item.line->value : std::string_view();
}

std::string pathOf(const ProductLine& line, std::string_view value) {
    return line.tree().relative(line.tree().hostOfWritten(value));
}

const TvSystemFiles* systemsAt(const ProductLine& line, std::string_view value) {
    const auto& all = line.tvSystems();
    const std::string path = pathOf(line, value);
    const auto found = std::find_if(all.begin(), all.end(), [&](const TvSystemFiles& files) {
        return files.file->path() == path;
    });
    return !value.empty() && found != all.end() ? &*found : nullptr;
}

const PlanFiles* plansAt(const ProductLine& line, std::string_view value) {
    const auto& all = line.planFolders();
    const std::string path = value.empty() ? "tvconfigs" + std::string(product::kDefaultPlansFolder)
                                           : pathOf(line, value);
    const auto found = std::find_if(all.begin(), all.end(), [&](const PlanFiles& files) {
        return files.folder->path() == path;
    });
    return found != all.end() ? &*found : nullptr;
}

}  // namespace

std::optional<_tv_country> countryOf(std::string_view name) {
    static const product::NameTable names = product::countryNames();
    const std::optional<int32_t> value = names.find(name);
    return value ? std::optional(_tv_country{*value}) : std::nullopt;
}

std::string_view countryMeantBy(std::string_view name) {
    static const std::vector<std::string_view> names = [] {
        std::vector<std::string_view> all(product::kCountryNames.begin(),
                                          product::kCountryNames.end());
        all.erase(std::remove(all.begin(), all.end(), kNoCountryName), all.end());
        return all;
    }();
    const std::string_view word = trimmed(name);
    for (const OtherName& other : kOtherNames) {
        if (other.name.size() == word.size() && distanceOf(other.name, word) == 0) {
            return other.country;
        }
    }
    return nearest(word, names);
}

std::string flawAtEnds(std::string_view text) {
    const auto nameOf = [](char c) {
        switch (c) {
            case '\r':
                return "a carriage return";
            case '\t':
                return "a tab";
            case '\n':
                return "a line break";
            default:
                return "a blank";
        }
    };
    const std::string_view core = trimmed(text);
    if (core.size() == text.size() || core.empty()) {
        return {};
    }
    const bool isAtEnd = core.data() + core.size() < text.data() + text.size();
    return isAtEnd ? nameOf(text.back()) + std::string(" at its end")
                   : nameOf(text.front()) + std::string(" at its beginning");
}

bool hasBlankInElement(const ReadLine& read) {
    return read.column == 0 && !flawAtEnds(read.value).empty();
}

bool isUsable(const FileLines* file) {
    return file != nullptr && file->exists() && !file->isUnreadable();
}

const ReadLine* CountryBlock::find(std::string_view element) const {
    const auto found =
            std::find_if(elements.begin(), elements.end(), [element](const ReadLine* read) {
                return read->use == LineUse::ITEM && read->key == element;
            });
    return found != elements.end() ? *found : nullptr;
}

std::vector<CountryBlock> blocksOf(const FileLines& map) {
    std::vector<CountryBlock> blocks;
    for (const ReadLine& read : map.lines()) {
        if (read.use == LineUse::SECTION) {
            blocks.push_back({&read, {}});
        } else if (!read.owner.empty() && !blocks.empty()) {
            blocks.back().elements.push_back(&read);
        }
    }
    return blocks;
}

size_t countIgnoredBlocks(const FileLines& map) {
    return static_cast<size_t>(
            std::count_if(map.lines().begin(), map.lines().end(), [](const ReadLine& read) {
                return read.use == LineUse::IGNORED && read.owner.empty();
            }));
}

std::vector<RegionalSet> regionalSetsOf(const ProductLine& line) {
    // Most models of a line share their values, so look up the files of each combination once.
    std::set<std::tuple<std::string_view, std::string_view, std::string_view>> values;
    for (const Model& model : line.models()) {
        if (!model.counts || !isUsable(model.file)) {
            continue;
        }
        for (const Board& board : line.boards()) {
            values.emplace(fileNamed(line, model, board, product::item::kCountries),
                           fileNamed(line, model, board, product::item::kTvSystems),
                           fileNamed(line, model, board, product::item::kChannelPlans));
        }
    }
    std::vector<RegionalSet> sets;
    for (const auto& [list, systems, plans] : values) {
        RegionalSet set;
        set.list = list.empty() ? nullptr : line.find(pathOf(line, list));
        set.systems = systemsAt(line, systems);
        set.plans = plansAt(line, plans);
        sets.push_back(set);
    }
    return sets;
}

void FindingGroups::add(std::string group, Place place, std::string message,
                        std::vector<Related> related) {
    const auto [position, isNew] =
            mPositions.try_emplace(place.file + '\n' + group, mGroups.size());
    if (isNew) {
        mGroups.push_back(
                {std::move(group), std::move(place), std::move(message), std::move(related), {}});
        return;
    }
    Group& first = mGroups[position->second];
    const Place& last = first.more.empty() ? first.place : first.more.back();
    if (last.line != place.line || last.column != place.column) {
        first.more.push_back(std::move(place));
    }
}

void FindingGroups::report(Reporter& reporter) {
    constexpr size_t kMostRelated = 3;
    for (Group& group : mGroups) {
        const size_t count = group.more.size();
        if (count > 0) {
            group.message += " (and " + std::to_string(count) + " more like it in this file)";
        }
        for (size_t i = 0; i < std::min(count, kMostRelated); ++i) {
            group.related.push_back({std::move(group.more[i]), "here, too"});
        }
        reporter.report(std::move(group.place), std::move(group.message), std::move(group.related));
    }
    mGroups.clear();
    mPositions.clear();
}

}  // namespace mlk::tree
