#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "common/ConfigKey.h"
#include "host/testing/HostSet.h"
#include "projectconfigs/ProjectParser.h"

namespace mlk::samples {

using vendor::morlak::mlkconfigs::V1_0::implementation::ConfigKey;
using vendor::morlak::mlkconfigs::V1_0::implementation::ProjectParser;

/** Names an item. */
struct ItemName {
    std::string category;
    std::string key;
    bool operator<(const ItemName& other) const {
        return std::tie(category, key) < std::tie(other.category, other.key);
    }
};
using Items = std::map<ItemName, std::string>;

/** How many models the sample lists, the commented-out one included: indexes 1 to kModelCount. */
constexpr int kModelCount = 7;

/** Folder of the sample in the source tree. Tests read it and never write to it. */
std::filesystem::path samplesFolder();

/** Paths of all files below samples/partitions, relative to it, in byte order. */
std::vector<std::string> partitionFiles();

/**
 * Content of a file below samples/partitions, byte for byte; throws std::runtime_error when it
 * cannot be read.
 */
std::string contentOf(const std::string& relative);

/** The lines of a text; a carriage return stays, a last line without line end counts. */
std::vector<std::string> linesOf(const std::string& text);

/** A copy of the sample's partitions, as a set has them, and the product's parser on it. */
class SampleSet {
  public:
    SampleSet();

    /** Reads the files of one model. @param boardId as ProjectParser::update takes it */
    void select(int model, const std::string& boardId);

    /** The items of the parser, as it lists them. */
    Items items() const;

    std::string value(const std::string& section, const std::string& key) const;

    /** Full path of what a model calls "/tvconfigs/...", "/tvdata/..." or "/impdata/...". */
    std::string path(const std::string& onSet) const { return mSet.dir().path() + onSet; }

    ProjectParser& parser() { return mParser; }
    const mlk::testing::HostSet& set() const { return mSet; }

  private:
    mlk::testing::HostSet mSet;
    const std::string mTvdata;
    const std::string mTvconfigs;
    const std::string mImpdata;
    ProjectParser mParser;
};

}  // namespace mlk::samples
