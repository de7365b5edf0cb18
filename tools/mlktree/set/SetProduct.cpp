#include "tools/mlktree/set/SetProduct.h"

#include <limits>
#include <utility>

#include "projectconfigs/ChainKeywords.h"
#include "regional/RegionalNames.h"
#include "tools/mlktree/set/SetModel.h"
#include "tvconfigs/FileConfigEditor.h"
#include "tvconfigs/PropConfigEditor.h"
#include "tvconfigs/ReadOnlyEditor.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

// A country without a name, for which nothing is configured. With kNoCountry, a set would save the
// first country of its map.
constexpr _tv_country kNowhere{std::numeric_limits<int32_t>::min()};

// An index that no line of a system file has.
constexpr int32_t kNoModel = std::numeric_limits<int32_t>::min();

product::SetIdentity identityOf(const ProductLine& line, const SetChoice& choice) {
    const Tree& tree = line.tree();
    product::SetIdentity identity;
    identity.projectId = choice.model != nullptr ? choice.model->index : kNoModel;
    identity.boardId = choice.board != nullptr && choice.board->file != nullptr
                               ? tree.written(tree.host(choice.board->file->path()))
                               : std::string(product::keyword::kNoBoardFile);
    identity.country = choice.country != kNoCountry ? choice.country : kNowhere;
    identity.customer = choice.customer != nullptr ? tree.host(choice.customer->file->path()) : "";
    return identity;
}

}  // namespace

SetProduct::SetProduct(const ProductLine& line, const SetChoice& choice)
    : mLine(line),
      mProperties(line.properties()),
      mData([this] { return mLine.tree().partitions(); }),
      mProject(line.tree().partitions(), mProperties, mData, identityOf(line, choice)),
      mSwitches(mProperties) {}

std::string SetProduct::featureFile() const {
    const std::string path = mProject.items().getInfo(product::kTvConfigItem);
    return product::tvFeatureFile(path.c_str(), mLine.tree().partitions());
}

const product::TvFeatures& SetProduct::features() {
    if (mFeatures == nullptr) {
        mFeatures = tvFeaturesIn(featureFile(), mProperties);
    }
    return *mFeatures;
}

std::unique_ptr<product::TvFeatures> tvFeaturesIn(const std::string& file,
                                                  FixedProperties& properties) {
    // Not by the constructor, which takes paths of a limited length: on a device they are shorter.
    auto editor = std::make_unique<product::FileConfigEditor>(nullptr);
    editor->Update(file.c_str());
    product::TvFeatures::EditorList editors;
    editors.push_back(std::make_unique<product::ReadOnlyEditor>(std::move(editor)));
    editors.push_back(std::make_unique<product::ReadOnlyEditor>(
            std::make_unique<product::PropConfigEditor>(properties)));
    return std::make_unique<product::TvFeatures>(nullptr, std::move(editors));
}

}  // namespace mlk::tree
