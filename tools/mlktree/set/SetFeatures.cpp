#include "tools/mlktree/set/SetFeatures.h"

#include <algorithm>
#include <iterator>
#include <memory>

#include "frameworkconfigs/FrameworkItems.h"
#include "regional/RegionalNames.h"
#include "tools/mlktree/FileReading.h"
#include "tools/mlktree/set/SetProduct.h"
#include "tvconfigs/TvConfigItems.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

std::vector<FeatureOrigin> originsOf(const TreeProperties& properties, const std::string& key) {
    const std::string text = properties.get(key.c_str());
    if (text.empty()) {
        return {FeatureOrigin()};
    }
    if (properties.isGiven(key)) {
        return {{FeatureLayer::OPTION, text, "", 0}};
    }
    return {{FeatureLayer::PROPERTY, text, "data/property/" + key, 1}};
}

// Finds the texts of keys.
class Origins {
  public:
    Origins(const ProductLine& line, const std::string& file) : mLine(line) {
        mFile = line.find(file);
        if (mFile == nullptr || mFile->format() != FileFormat::TV_FEATURES) {
            mOwn = readFile(line.tree(), file, FileFormat::TV_FEATURES);
            mFile = mOwn.get();
        }
    }

    std::vector<FeatureOrigin> ofFeature(const std::string& key) const {
        std::vector<FeatureOrigin> found = originsOf(mLine.properties(), key);
        const ReadLine* const read = mFile->isUnreadable() ? nullptr : mFile->find("", key);
        if (read != nullptr) {
            if (found.back().layer == FeatureLayer::DEFAULT) {
                found.clear();
            }
            found.push_back(
                    {FeatureLayer::FILE, std::string(read->value), mFile->path(), read->number});
        }
        return found;
    }

  private:
    const ProductLine& mLine;
    const FileLines* mFile = nullptr;
    std::unique_ptr<FileLines> mOwn;
};

}  // namespace

std::string_view nameOf(FeatureLayer layer) {
    switch (layer) {
        case FeatureLayer::FILE:
            return "file";
        case FeatureLayer::OPTION:
            return "option";
        case FeatureLayer::PROPERTY:
            return "property";
        case FeatureLayer::DEFAULT:
            break;
    }
    return "default";
}

std::string Feature::answer() const {
    if (isText) {
        return "";
    }
    return isFlag ? (value != 0 ? "true" : "false") : std::to_string(value);
}

std::string featureFileOf(const ProductLine& line, std::string_view value) {
    const Tree& tree = line.tree();
    return tree.relative(
            product::tvFeatureFile(tree.hostOfWritten(value).c_str(), tree.partitions()));
}

std::string featureFileOf(const SetModel& set) {
    return featureFileOf(set.line(), set.valueOf(product::kTvConfigItem));
}

std::vector<Feature> tvFeaturesOf(const ProductLine& line, const std::string& file) {
    const Origins origins(line, file);
    FixedProperties properties(line.properties());
    const std::unique_ptr<product::TvFeatures> tv =
            tvFeaturesIn(line.tree().host(file), properties);
    std::vector<Feature> all;
    for (const product::TvSystemRow& row : product::kTvSystems) {
        Feature& feature = all.emplace_back();
        feature.interface = "IMlkTvConfigs";
        feature.method = row.method;
        feature.key = row.key;
        feature.isFlag = false;
        feature.value = tv->get(row);
        feature.history = origins.ofFeature(feature.key);
    }
    for (const product::TvFlagRow& row : product::kTvFlags) {
        Feature& feature = all.emplace_back();
        feature.interface = "IMlkTvConfigs";
        feature.method = row.method;
        feature.key = row.key;
        feature.value = tv->get(row) ? 1 : 0;
        feature.history = origins.ofFeature(feature.key);
        if (const product::TvFlagRow* const master = product::masterOf(row)) {
            feature.master = master->method;
            feature.isMasterOn = tv->get(*master);
        }
    }
    return all;
}

std::vector<Feature> frameworkSwitchesOf(const ProductLine& line) {
    FixedProperties properties(line.properties());
    const product::FrameworkSwitches switches(properties);
    std::vector<Feature> all;
    for (size_t i = 0; i < std::size(product::kFrameworkItems); ++i) {
        const product::FrameworkItemRow& row = product::kFrameworkItems[i];
        Feature& feature = all.emplace_back();
        feature.interface = "IMlkFrameworkConfigs";
        feature.method = row.method;
        feature.isText = row.kind == product::FrameworkItemKind::TEXT;
        feature.isFlag = row.kind == product::FrameworkItemKind::FLAG ||
                         row.kind == product::FrameworkItemKind::INVERTED;
        feature.value = switches.get(i);
        feature.history = {FeatureOrigin()};
        if (row.property != nullptr) {
            feature.key = row.property;
            feature.history = originsOf(line.properties(), feature.key);
        }
    }
    return all;
}

std::vector<Feature> featuresOf(const SetModel& set) {
    std::vector<Feature> all = tvFeaturesOf(set.line(), featureFileOf(set));
    for (Feature& feature : frameworkSwitchesOf(set.line())) {
        all.push_back(std::move(feature));
    }
    return all;
}

}  // namespace mlk::tree
