#include "tools/mlktree/rules/Regional.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <tuple>
#include <utility>

#include "projectconfigs/KnownItems.h"
#include "regional/CountryTable.h"
#include "regional/RegionalNames.h"
#include "tools/common/Text.h"
#include "tools/mlktree/Nearest.h"
#include "tools/mlktree/rules/CountryCodes.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

constexpr std::string_view kNoCountryName = "DEFAULT";

// Names that people use and that share too few letters with the service's.
struct OtherName {
    std::string_view name;
    std::string_view country;
};
constexpr OtherName kOtherNames[] = {
        {"BELGIE", "BELGIUM"},
        {"BELGIQUE", "BELGIUM"},
        {"BOSNIA", "BOSNIA_HERZEGOVINA"},
        {"BOSNIA_AND_HERZEGOVINA", "BOSNIA_HERZEGOVINA"},
        {"BURMA", "MYANMAR"},
        {"COTE_D'IVOIRE", "IVORY_COAST"},
        {"CZECH_REPUBLIC", "CZECH"},
        {"CZECHIA", "CZECH"},
        {"DEUTSCHLAND", "GERMANY"},
        {"EIRE", "IRELAND"},
        {"EMIRATES", "UNITED_ARAB_EMIRATES"},
        {"ENGLAND", "UNITED_KINGDOM"},
        {"ESPANA", "SPAIN"},
        {"ESPA\xC3\x91"
         "A",
         "SPAIN"},
        {"GREAT_BRITAIN", "UNITED_KINGDOM"},
        {"HOLLAND", "NETHERLANDS"},
        {"KOREA", "SOUTH_KOREA"},
        {"KOREA_REPUBLIC_OF", "SOUTH_KOREA"},
        {"LAOS", "LAO_PDR"},
        {"MACEDONIA", "NORTH_MACEDONIA"},
        {"NEDERLAND", "NETHERLANDS"},
        {"OESTERREICH", "AUSTRIA"},
        {"OSTERREICH", "AUSTRIA"},
        {"REPUBLIC_OF_KOREA", "SOUTH_KOREA"},
        {"RUSSIAN_FEDERATION", "RUSSIA"},
        {"SALVADOR", "EL_SALVADOR"},
        {"SCHWEIZ", "SWITZERLAND"},
        {"SUISSE", "SWITZERLAND"},
        {"SUOMI", "FINLAND"},
        {"SVERIGE", "SWEDEN"},
        {"TRINIDAD_AND_TOBAGO", "TRINIDAD"},
        {"TURKIYE", "TURKEY"},
        {"UAE", "UNITED_ARAB_EMIRATES"},
        {"T\xC3\x9CRKIYE", "TURKEY"},
        {"UK", "UNITED_KINGDOM"},
        {"UNITED_STATES", "USA"},
        {"UNITED_STATES_OF_AMERICA", "USA"},
};

std::string_view fileNamed(const ProductLine& line, const Model& model, const Board& board,
                           const product::ConfigKey& key) {
    const LayeredItem item = line.item(model, board, key.category, key.key);
    return item ? item.line->value : std::string_view();
}

std::string pathOf(const ProductLine& line, std::string_view value) {
    return line.tree().relative(line.tree().hostOfWritten(value));
}

std::string folderOf(const ProductLine& line, std::string_view value) {
    std::string path = pathOf(line, value);
    return path.erase(path.find_last_not_of('/') + 1);
}

// The files of a line by their paths.
class FilesByPath {
  public:
    explicit FilesByPath(const ProductLine& line) : mLine(line) {
        for (const TvSystemFiles& files : line.tvSystems()) {
            mSystems.emplace(files.file->path(), &files);
        }
        for (const PlanFiles& files : line.planFolders()) {
            mPlans.emplace(files.folder->path(), &files);
        }
    }

    RegionalSet setOf(std::string_view list, std::string_view systems,
                      std::string_view plans) const {
        const std::string folder = plans.empty()
                                           ? "tvconfigs" + std::string(product::kDefaultPlansFolder)
                                           : folderOf(mLine, plans);
        RegionalSet set;
        set.list = list.empty() ? nullptr : mLine.find(pathOf(mLine, list));
        set.systems = systems.empty() ? nullptr : at(mSystems, pathOf(mLine, systems));
        set.plans = at(mPlans, folder);
        return set;
    }

  private:
    template <typename Files>
    static const Files* at(const std::map<std::string, const Files*>& all,
                           const std::string& path) {
        const auto found = all.find(path);
        return found != all.end() ? found->second : nullptr;
    }

    const ProductLine& mLine;
    std::map<std::string, const TvSystemFiles*> mSystems;
    std::map<std::string, const PlanFiles*> mPlans;
};

}  // namespace

std::optional<_tv_country> countryOf(std::string_view name) {
    static const product::NameTable names = product::countryNames();
    const std::optional<int32_t> value = names.find(name);
    return value ? std::optional(_tv_country{*value}) : std::nullopt;
}

_tv_country countryOfOption(const std::string& name) {
    const std::optional<_tv_country> country = countryOf(name);
    if (!country) {
        const std::string_view other = countryMeantBy(name);
        throw UsageError("--country " + printable(name) + ": the service knows no such country" +
                         (other.empty() ? "" : "; did you mean " + std::string(other) + "?"));
    }
    return *country;
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
        if (other.name.size() == word.size() && distanceOf(other.name, word, 0) == 0) {
            return other.country;
        }
    }
    const std::string_view country = countryOfCode(word);
    return country.empty() ? nearest(word, names) : country;
}

std::set<std::string_view> countriesMeantBy(const std::vector<std::string_view>& names) {
    constexpr size_t kMostLookedAt = 1000;
    std::set<std::string_view> wrong;
    for (const std::string_view name : names) {
        if (wrong.size() < kMostLookedAt && !countryOf(name)) {
            wrong.insert(name);
        }
    }
    std::set<std::string_view> countries;
    for (const std::string_view name : wrong) {
        countries.insert(countryMeantBy(name));
    }
    return countries;
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

bool hasCountries(const FileLines& list) {
    return std::any_of(list.lines().begin(), list.lines().end(),
                       [](const ReadLine& read) { return read.use == LineUse::ITEM; });
}

bool hasBlankInElement(const ReadLine& read) {
    return read.column == 0 && !flawAtEnds(read.value).empty();
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
    const FilesByPath files(line);
    std::vector<RegionalSet> sets;
    sets.reserve(values.size());
    for (const auto& [list, systems, plans] : values) {
        sets.push_back(files.setOf(list, systems, plans));
    }
    return sets;
}

void FindingGroups::add(const std::string& group, Place place, std::string message,
                        std::vector<Related> related) {
    constexpr size_t kMostRelated = 3;
    const std::string name = place.file + '\n' + group;
    const auto position = mPositions.find(name);
    if (position != mPositions.end()) {
        Group& first = mGroups[position->second];
        if (first.last.line != place.line || first.last.column != place.column) {
            first.last = place;
            if (++first.more <= kMostRelated) {
                first.related.push_back({std::move(place), "here, too"});
            }
        }
        return;
    }
    if (isFull(place.file)) {
        return;
    }
    if (++mCounts[place.file] == kMostOfFile) {
        message += "; there may be more such findings in this file";
    }
    mPositions.emplace(name, mGroups.size());
    mGroups.push_back({place, std::move(message), std::move(related), 0, place});
}

bool FindingGroups::isFull(const std::string& file) const {
    const auto count = mCounts.find(file);
    return count != mCounts.end() && count->second >= kMostOfFile;
}

void FindingGroups::report(Reporter& reporter) {
    for (Group& group : mGroups) {
        if (group.more > 0) {
            group.message += " (and " + std::to_string(group.more) + " more like it in this file)";
        }
        reporter.report(std::move(group.place), std::move(group.message), std::move(group.related));
    }
    mGroups.clear();
    mPositions.clear();
    mCounts.clear();
}

}  // namespace mlk::tree
