#include "tools/mlktree/RegionalFiles.h"

#include <utility>

#include "common/Paths.h"
#include "regional/RegionalNames.h"
#include "regional/TvconfigsPath.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

// Gives what is read of two files to the FileLines of each.
class ByFile : public ReadObserver {
  public:
    ByFile(const Tree& tree, std::string firstPath, FileLines& first)
        : mTree(tree), mFirstPath(std::move(firstPath)), mFirst(first) {}

    void onLine(const ReadLine& line) override { of(line.path).onLine(line); }
    void onProblem(const ReadProblem& problem) override { of(problem.path).onProblem(problem); }
    std::unique_ptr<FileLines> takeSecond() { return std::move(mSecond); }

  private:
    FileLines& of(std::string_view path) {
        if (path == mFirstPath) {
            return mFirst;
        }
        if (mSecond == nullptr) {
            mSecond = std::make_unique<FileLines>(mTree.relative(path), FileFormat::COUNTRY_MAP);
        }
        return *mSecond;
    }

    const Tree& mTree;
    const std::string mFirstPath;
    FileLines& mFirst;
    std::unique_ptr<FileLines> mSecond;
};

}  // namespace

TvSystems::TvSystems(const Tree& tree, const TreeProperties& properties, const std::string& path)
    : mFile(std::make_unique<FileLines>(path, FileFormat::TV_SYSTEMS)),
      mObserver(std::make_unique<ByFile>(tree, tree.host(path), *mFile)),
      mData([&tree] { return tree.partitions(); }, mObserver.get()),
      mHolder(tree.partitions(), properties, mData) {
    const std::string host = tree.host(path);
    mHolder.loadConfigXmlFile(host);
    mHolder.loadCountryTvConfigMapXML();
    mFile->finish(product::pathExists(host), {});
    const ReadLine* const named = mFile->find("", product::element::kCountryMap);
    const std::string_view map = named != nullptr ? product::fromTvconfigs(named->value) : "";
    if (!map.empty()) {
        const std::string mapHost = tree.hostOfWritten(map);
        mMap = static_cast<ByFile&>(*mObserver).takeSecond();
        if (mMap == nullptr) {
            mMap = std::make_unique<FileLines>(tree.relative(mapHost), FileFormat::COUNTRY_MAP);
        }
        mMap->finish(product::pathExists(mapHost), {});
    }
}

std::string planFolderOf(const Tree& tree, std::string_view value) {
    if (value.empty()) {
        return "tvconfigs" + std::string(product::kDefaultPlansFolder);
    }
    // One folder has one name, so that it is read once.
    std::string path = tree.relative(tree.hostOfWritten(value));
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

PlanFolder::PlanFolder(const Tree& tree, std::string path)
    : mPath(std::move(path)),
      mMap(std::make_unique<FileLines>(mPath + product::kChannelMapFile, FileFormat::CHANNEL_MAP)),
      mData(std::make_unique<product::RegionalData>([&tree] { return tree.partitions(); },
                                                    mMap.get())) {
    std::string name;
    // The first question makes the service read the map.
    mData->plans.GetFreqTableNameByCountry(tree.host(mPath), product::kNoCountry,
                                           FreqTableType::DTV_ANTENNA, AtscCableType::AUTO, name);
    mMap->finish(product::pathExists(tree.host(mMap->path())), {});
    mHasCountries = !mMap->sections().empty();
}

std::string PlanFolder::planOf(_tv_country country, FreqTableType type, AtscCableType cable) const {
    std::string name;
    std::string plan;
    if (!mHasCountries || !mData->countries.getCountryName(country, name) ||
        !mData->plans.GetFreqTableNameByCountryName(name, type, cable, plan) || plan.empty()) {
        return {};
    }
    const bool isDigital = type == FreqTableType::DTV_ANTENNA || type == FreqTableType::DTV_CABLE;
    return mPath + (isDigital ? product::kDtvPlansFolder : product::kAtvPlansFolder) + plan;
}

}  // namespace mlk::tree
