#pragma once

#include <memory>
#include <string>

#include "common/Partitions.h"
#include "common/Properties.h"
#include "frameworkconfigs/FrameworkSwitches.h"
#include "projectconfigs/ProjectSet.h"
#include "regional/RegionalData.h"
#include "tools/mlktree/ProductLine.h"
#include "tvconfigs/TvFeatures.h"

namespace mlk::tree {

struct SetChoice;

/** The properties of a tree, which nothing changes. Thread-safe. */
class FixedProperties : public vendor::morlak::mlkconfigs::V1_0::implementation::Properties {
  public:
    /** @param properties  must outlive the object */
    explicit FixedProperties(const Properties& properties) : mProperties(properties) {}

    std::string get(const char* key) const override { return mProperties.get(key); }
    bool getBool(const char* key, bool defaultValue) const override {
        return mProperties.getBool(key, defaultValue);
    }
    int32_t getInt32(const char* key, int32_t defaultValue) const override {
        return mProperties.getInt32(key, defaultValue);
    }
    /** Changes nothing. @return false */
    bool set(const char* /* key */, const char* /* value */) override { return false; }

  private:
    const Properties& mProperties;
};

/**
 * The TV features with a TV feature file. What they store goes nowhere.
 *
 * @param file        a path of this machine, whether or not it exists
 * @param properties  must outlive the object
 */
std::unique_ptr<vendor::morlak::mlkconfigs::V1_0::implementation::TvFeatures> tvFeaturesIn(
        const std::string& file, FixedProperties& properties);

/**
 * The product's own objects for one set of a product line, as they are after a start of the service
 * on it. They read the files of the set, and write nothing: no country is saved, and what
 * TvFeatures stores goes nowhere.
 *
 * The product line must outlive the object. One thread at a time.
 */
class SetProduct {
  public:
    SetProduct(const ProductLine& line, const SetChoice& choice);

    /** Items, sound delays, auxiliary files, region. */
    vendor::morlak::mlkconfigs::V1_0::implementation::ProjectSet& project() { return mProject; }

    /** The TV features. Reads their files when it is first called. */
    const vendor::morlak::mlkconfigs::V1_0::implementation::TvFeatures& features();

    /** The TV feature file in use: a path of this machine, whether or not it exists. */
    std::string featureFile() const;

    /** The framework switches. */
    const vendor::morlak::mlkconfigs::V1_0::implementation::FrameworkSwitches& switches() const {
        return mSwitches;
    }

  private:
    const ProductLine& mLine;
    FixedProperties mProperties;
    vendor::morlak::mlkconfigs::V1_0::implementation::RegionalData mData;
    vendor::morlak::mlkconfigs::V1_0::implementation::ProjectSet mProject;
    const vendor::morlak::mlkconfigs::V1_0::implementation::FrameworkSwitches mSwitches;
    std::unique_ptr<vendor::morlak::mlkconfigs::V1_0::implementation::TvFeatures> mFeatures;
};

}  // namespace mlk::tree
