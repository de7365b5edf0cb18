// The part of ProductLineBuilder that finds the countries of a line.

#include <set>

#include "projectconfigs/KnownItems.h"
#include "regional/RegionalNames.h"
#include "tools/mlktree/CountryNames.h"
#include "tools/mlktree/ProductLineBuilder.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

void ProductLineBuilder::findCountries() {
    const product::NameTable names = product::countryNames();
    std::set<int32_t> values;
    const auto add = [&](std::string_view name) {
        const std::optional<int32_t> value = names.find(name);
        if (value && *value != product::kNoCountry) {
            values.insert(*value);
        }
    };
    for (const auto& [path, file] : mLine.mFiles) {
        if (file->format() == FileFormat::COUNTRY_LIST) {
            for (const ReadLine& line : file->lines()) {
                if (line.use == LineUse::ITEM) {
                    add(line.key);
                }
            }
        } else if (file->format() == FileFormat::COUNTRY_MAP) {
            for (const auto& [name, line] : file->sections()) {
                add(name);
            }
        }
    }
    for (const int32_t value : values) {
        mLine.mCountries.push_back(_tv_country{value});
    }
}

// As at a start of the service, which would save the first country of the map.
_tv_country ProductLineBuilder::countryOfSet() const {
    const Partitions& partitions = mLine.mTree.partitions();
    product::RegionalData data([&] { return partitions; });
    const product::TvSysMapCfgHolder holder(partitions, mLine.mProperties, data);
    if (const std::optional<_tv_country> saved = holder.savedCountry()) {
        return *saved;
    }
    const Model none;
    const Model& model = mLine.mModels.empty() ? none : mLine.mModels.back();
    const LayeredItem systems =
            mLine.item(model, mLine.mBoards.front(), product::item::kTvSystems.category,
                       product::item::kTvSystems.key);
    for (const TvSystemFiles& files : mLine.mTvSystems) {
        if (systems && files.file->path() == pathOf(systems.line->value)) {
            return files.systems->firstCountry();
        }
    }
    return product::kNoCountry;
}

void ProductLineBuilder::selectCountry() {
    if (mSelection.country.empty()) {
        if (mSelection.isOneSet) {
            const _tv_country country = countryOfSet();
            mLine.mCountries.assign(country == product::kNoCountry ? 0 : 1, country);
        } else if (mSelection.hasAllCountries) {
            findAllCountries();
        }
        return;
    }
    mLine.mCountries = {countryOfOption(mSelection.country)};
}

// Reads the whole line of each customer, as far as its countries are not known yet.
void ProductLineBuilder::findAllCountries() {
    const bool isOfMany = mLine.mCustomers.size() > 1;
    if (mLine.isWhole() && !isOfMany) {
        return;
    }
    const auto countriesOf = [&](std::vector<std::string> customers) {
        Selection whole;
        whole.customers = std::move(customers);
        return ProductLine(mLine.mTree, mLine.mSettings, mLine.mProperties, whole).countries();
    };
    if (!isOfMany) {
        mLine.mCountries = countriesOf(mSelection.customers);
        return;
    }
    std::set<int32_t> values;
    for (size_t i = 0; i < mLine.mCustomers.size(); ++i) {
        const std::vector<_tv_country> countries = countriesOf({mCustomerWords[i]});
        values.insert(countries.begin(), countries.end());
        mLine.mCustomers[i].countries = countries;
    }
    mLine.mCountries.clear();
    for (const int32_t value : values) {
        mLine.mCountries.push_back(_tv_country{value});
    }
}

}  // namespace mlk::tree
