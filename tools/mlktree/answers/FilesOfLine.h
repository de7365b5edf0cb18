#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

#include "tools/mlktree/ProductLine.h"

namespace mlk::tree {

/** The files of a product line in the formats in which a set reads them. Thread-safe. */
class FilesOfLine {
  public:
    /** @param line  must outlive the object */
    explicit FilesOfLine(const ProductLine& line) : mLine(line) {}

    const ProductLine& line() const { return mLine; }

    /** A file as the line has it; read here if the line has it not, or in another format. */
    const FileLines& as(const std::string& path, FileFormat format);

    /** The TV system file of that path. */
    const TvSystemFiles& tvSystems(const std::string& path);

    /** The folder of channel plans of that path. */
    const PlanFiles& plans(const std::string& path);

    /** The path that a value names, relative to the tree. */
    std::string pathOf(std::string_view value) const;

  private:
    const ProductLine& mLine;
    std::mutex mMutex;  // guards the ones below
    std::map<std::pair<std::string, FileFormat>, std::unique_ptr<const FileLines>> mFiles;
    std::map<std::string, TvSystemFiles> mTvSystems;
    std::map<std::string, PlanFiles> mPlans;
    std::vector<std::unique_ptr<const FileLines>> mOwned;
};

}  // namespace mlk::tree
