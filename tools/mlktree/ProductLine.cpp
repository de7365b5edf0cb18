#include "tools/mlktree/ProductLine.h"

#include <algorithm>
#include <set>

#include "tools/mlktree/ProductLineBuilder.h"

namespace mlk::tree {

namespace {

const std::vector<Naming> kNobody;

}  // namespace

// Collects the sets that lead to a file, from the lines that name it upwards.
class SetFinder {
  public:
    explicit SetFinder(const ProductLine& line) : mLine(line) {}

    void follow(const std::string& path) {
        if (mIsAll || !mVisited.insert(path).second) {
            return;
        }
        mIsAll |= mLine.mFilesOfAll.count(path) > 0;
        const auto models = mLine.mModelsOfFile.find(path);
        if (models != mLine.mModelsOfFile.end()) {
            mModels.insert(models->second.begin(), models->second.end());
        }
        const auto board = mLine.mBoardOfFile.find(path);
        if (board != mLine.mBoardOfFile.end()) {
            mBoards.insert(std::string(board->second));
        }
        for (const Naming& naming : mLine.namings(path)) {
            if (naming.file == nullptr) {
                mIsAll |= mVisited.size() > 1 || board == mLine.mBoardOfFile.end();
            } else if (naming.file->format() != FileFormat::SYSTEM &&
                       naming.file->format() != FileFormat::CUSTOMER &&
                       naming.file->format() != FileFormat::BOARD_ID) {
                follow(naming.file->path());
            }
        }
    }

    std::vector<std::string> groups() const {
        const size_t models = mLine.mModelIndices.size();
        if (mIsAll || (mModels.size() == models && models > 0) ||
            (mBoards.size() == mLine.boards().size() && !mBoards.empty())) {
            return {"all"};
        }
        std::vector<std::string> groups;
        for (const int32_t model : mModels) {
            groups.push_back("model=" + std::to_string(model));
        }
        for (const std::string& board : mBoards) {
            groups.push_back("board=" + board);
        }
        return groups;
    }

  private:
    const ProductLine& mLine;
    std::set<std::string> mVisited;
    std::set<int32_t> mModels;
    std::set<std::string> mBoards;
    bool mIsAll = false;
};

ProductLine::ProductLine(const Tree& tree, const Settings& settings,
                         const TreeProperties& properties, const Selection& selection)
    : mTree(tree),
      mSettings(settings),
      mProperties(properties),
      mSources(tree),
      mIsWhole(!selection.model && selection.board.empty() && !selection.isOneSet) {
    ProductLineBuilder(*this, selection).build();
    indexSets();
}

ProductLine::~ProductLine() = default;

void ProductLine::indexSets() {
    for (const Customer& customer : mCustomers) {
        mFilesOfAll.insert(customer.file->path());
        if (customer.system != nullptr) {
            mFilesOfAll.insert(customer.system->path());
        }
    }
    for (const auto& [path, file] : mFiles) {
        if (isIdentity(file->format())) {
            mFilesOfAll.insert(path);
        }
    }
    for (const Model& model : mModels) {
        mModelIndices.insert(model.index);
        if (model.counts && model.file != nullptr) {
            mModelsOfFile[model.file->path()].insert(model.index);
        }
    }
    for (const Board& board : mBoards) {
        if (board.file != nullptr) {
            mBoardOfFile.emplace(board.file->path(), board.name);
        }
    }
}

size_t ProductLine::setCount() const {
    const auto models = static_cast<size_t>(std::count_if(
            mModels.begin(), mModels.end(), [](const Model& model) { return model.counts; }));
    return models * mBoards.size() * std::max<size_t>(mCountries.size(), 1);
}

const FileLines* ProductLine::find(std::string_view path) const {
    const auto file = mFiles.find(path);
    return file != mFiles.end() ? file->second.get() : nullptr;
}

const std::vector<Naming>& ProductLine::namings(std::string_view path) const {
    const auto found = mNamings.find(path);
    return found != mNamings.end() ? found->second : kNobody;
}

LayeredItem ProductLine::item(const Model& model, const Board& board, std::string_view section,
                              std::string_view key) const {
    LayeredItem item;
    for (const FileLines* const file : {model.file, board.file}) {
        const ReadLine* const line = file != nullptr ? file->find(section, key) : nullptr;
        if (line != nullptr) {
            item.replacedFile = item.file;
            item.replacedLine = item.line;
            item.file = file;
            item.line = line;
        }
    }
    return item;
}

std::vector<std::string> ProductLine::setsOf(std::string_view path) const {
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto [sets, isNew] = mSetsOf.try_emplace(std::string(path));
    if (isNew) {
        SetFinder finder(*this);
        finder.follow(sets->first);
        sets->second = finder.groups();
    }
    return sets->second;
}

}  // namespace mlk::tree
