#include "tools/mlktree/set/SetFeatures.h"

#include <algorithm>
#include <iterator>
#include <memory>

#include "frameworkconfigs/FrameworkItems.h"
#include "tools/mlktree/FileReading.h"
#include "tools/mlktree/set/SetProduct.h"
#include "tvconfigs/TvConfigItems.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

// The flag on which another depends; null for none.
const product::TvFlagRow* masterOf(const product::TvFlagRow& row) {
    switch (row.rule) {
        case product::FlagRule::UNDER_ATV:
            return &product::kTvFlags[product::tvFlagItem("atvEnabled")];
        case product::FlagRule::UNDER_DTV:
            return &product::kTvFlags[product::tvFlagItem("dtvEnabled")];
        case product::FlagRule::CAPTION:
            return &product::kTvFlags[product::tvFlagItem("closeCaptionEnabled")];
        case product::FlagRule::PLAIN:
        case product::FlagRule::CAPTION_MASTER:
            break;
    }
    return nullptr;
}

// Finds the texts of keys.
class Origins {
  public:
    explicit Origins(const SetModel& set) : mSet(set) {
        const std::string path = featureFileOf(set);
        mFile = set.line().find(path);
        if (mFile == nullptr || mFile->format() != FileFormat::TV_FEATURES) {
            mOwn = readFile(set.line().tree(), path, FileFormat::TV_FEATURES);
            mFile = mOwn.get();
        }
    }

    std::vector<FeatureOrigin> ofProperty(const std::string& key) const {
        const TreeProperties& properties = mSet.line().properties();
        const std::string text = properties.get(key.c_str());
        if (text.empty()) {
            return {FeatureOrigin()};
        }
        if (properties.isGiven(key)) {
            return {{FeatureLayer::OPTION, text, "", 0}};
        }
        return {{FeatureLayer::PROPERTY, text, "data/property/" + key, 1}};
    }

    std::vector<FeatureOrigin> ofFeature(const std::string& key) const {
        std::vector<FeatureOrigin> found = ofProperty(key);
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
    const SetModel& mSet;
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

std::string featureFileOf(const SetModel& set) {
    return set.line().tree().relative(set.product().featureFile());
}

std::vector<Feature> featuresOf(const SetModel& set) {
    const Origins origins(set);
    const product::TvFeatures& tv = set.product().features();
    std::vector<Feature> all;
    for (const product::TvSystemRow& row : product::kTvSystems) {
        Feature& feature = all.emplace_back();
        feature.interface = "IMlkTvConfigs";
        feature.method = row.method;
        feature.key = row.key;
        feature.isFlag = false;
        feature.value = tv.get(row);
        feature.history = origins.ofFeature(feature.key);
    }
    for (const product::TvFlagRow& row : product::kTvFlags) {
        Feature& feature = all.emplace_back();
        feature.interface = "IMlkTvConfigs";
        feature.method = row.method;
        feature.key = row.key;
        feature.value = tv.get(row) ? 1 : 0;
        feature.history = origins.ofFeature(feature.key);
        if (const product::TvFlagRow* const master = masterOf(row)) {
            feature.master = master->method;
            feature.isMasterOn = tv.get(*master);
        }
    }
    for (size_t i = 0; i < std::size(product::kFrameworkItems); ++i) {
        const product::FrameworkItemRow& row = product::kFrameworkItems[i];
        Feature& feature = all.emplace_back();
        feature.interface = "IMlkFrameworkConfigs";
        feature.method = row.method;
        feature.isText = row.kind == product::FrameworkItemKind::TEXT;
        feature.isFlag = row.kind == product::FrameworkItemKind::FLAG ||
                         row.kind == product::FrameworkItemKind::INVERTED;
        feature.value = set.product().switches().get(i);
        feature.history = {FeatureOrigin()};
        if (row.property != nullptr) {
            feature.key = row.property;
            feature.history = origins.ofProperty(feature.key);
        }
    }
    return all;
}

}  // namespace mlk::tree
