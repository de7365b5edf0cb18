#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/mlktree/set/SetModel.h"

namespace mlk::tree {

/** Where the value of a feature comes from. The first of these that has one counts. */
enum class FeatureLayer {
    FILE,     /**< the TV feature file */
    OPTION,   /**< --prop */
    PROPERTY, /**< the tree's system properties */
    DEFAULT,  /**< nothing has a value */
};

/** "file", "option", "property" or "default". */
std::string_view nameOf(FeatureLayer layer);

/** A text for a feature, and where it stands. */
struct FeatureOrigin {
    FeatureLayer layer = FeatureLayer::DEFAULT;
    std::string text;
    std::string file; /**< relative to the tree; empty for an option and a default */
    size_t line = 0;
};

/** A TV feature, one of the two TV systems, or a framework switch. */
struct Feature {
    const char* interface = ""; /**< "IMlkTvConfigs" or "IMlkFrameworkConfigs" */
    std::string method;         /**< its getter: "pvrEnabled" */
    std::string key;            /**< of the file and the property; empty if nothing is read */
    bool isFlag = true;
    bool isText = false; /**< a text, which is always empty */
    int32_t value = 0;   /**< what the service answers; 0 or 1 for a flag */
    /** All texts for it: the one that counts last; the default alone if there is no other. */
    std::vector<FeatureOrigin> history;
    /** The flag that must be true for this one to be true; empty for none. */
    std::string master;
    bool isMasterOn = true;

    /** "true", "false" or a number, as the service answers it. */
    std::string answer() const;
};

/** The features of a set: those of IMlkTvConfigs, then the switches of IMlkFrameworkConfigs. */
std::vector<Feature> featuresOf(const SetModel& set);

/** Those of IMlkTvConfigs in a set with that TV feature file, a path relative to the tree. */
std::vector<Feature> tvFeaturesOf(const ProductLine& line, const std::string& file);

/** The switches of IMlkFrameworkConfigs. */
std::vector<Feature> frameworkSwitchesOf(const ProductLine& line);

/** The TV feature file of a set, relative to the tree, whether or not it exists. */
std::string featureFileOf(const SetModel& set);

/** The TV feature file of a set with that value of "[LiveTV]" "TvConfig", as written. */
std::string featureFileOf(const ProductLine& line, std::string_view value);

}  // namespace mlk::tree
