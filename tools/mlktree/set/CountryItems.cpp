#include "tools/mlktree/set/CountryItems.h"

#include "projectconfigs/KnownItems.h"
#include "regional/RegionalNames.h"
#include "regional/TvconfigsPath.h"
#include "tools/mlktree/CountryBlocks.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

CountryItems::CountryItems(const TvSystemFiles& files) : mFiles(files) {
    for (const ReadLine& read : files.file->lines()) {
        if (read.use == LineUse::ITEM && read.isNew) {
            mOfSystem[read.owner].push_back(
                    {read.section, read.key, read.value, files.file, &read});
        }
    }
    if (files.map != nullptr) {
        mBlocks = blocksOf(*files.map);
    }
}

CountryBrings CountryItems::of(_tv_country country) const {
    CountryBrings brings;
    if (country == product::kNoCountry) {
        return brings;
    }
    const TvSystems& systems = *mFiles.systems;
    brings.tvSystem = systems.systemOf(country);
    const auto items = mOfSystem.find(brings.tvSystem);
    if (!brings.tvSystem.empty() && items != mOfSystem.end()) {
        brings.items = items->second;
    }
    const std::string name = systems.nameOf(country);
    if (name.empty()) {
        return brings;
    }
    // As the service looks for it: the first name that contains the country's.
    for (const CountryBlock& block : mBlocks) {
        if (block.country().find(name) == std::string_view::npos) {
            continue;
        }
        brings.record = block.begin;
        const ReadLine* const read = block.find(product::element::kFeaturesOfCountry);
        if (read != nullptr && !systems.featuresOf(country).empty()) {
            const product::ConfigKey& item = product::kTvConfigItem;
            brings.items.push_back({item.category, item.key, product::fromTvconfigs(read->value),
                                    mFiles.map, read});
        }
        break;
    }
    return brings;
}

}  // namespace mlk::tree
