#include "tools/mlktree/CountryNames.h"

#include <algorithm>

#include "tools/common/Text.h"
#include "tools/mlktree/CountryCodes.h"
#include "tools/mlktree/Nearest.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/Tree.h"

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

}  // namespace mlk::tree
