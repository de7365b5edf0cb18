#include "tools/mlktree/set/SetModel.h"

#include <algorithm>

#include "projectconfigs/KnownItems.h"
#include "tools/mlktree/FileReading.h"
#include "tools/mlktree/set/CountryItems.h"
#include "tools/mlktree/set/SetProduct.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

// A file as a project or board file. A tree may name one file in two formats.
const FileLines* asProject(const Tree& tree, const FileLines* file,
                           std::unique_ptr<FileLines>& own) {
    if (file == nullptr || file->format() == FileFormat::PROJECT) {
        return file;
    }
    own = readFile(tree, file->path(), FileFormat::PROJECT);
    return own.get();
}

}  // namespace

SetChoice onlySetOf(const ProductLine& line) {
    SetChoice choice;
    choice.customer = &line.customers().front();
    for (const Model& model : line.models()) {
        if (model.counts) {
            choice.model = &model;
        }
    }
    if (!line.boards().empty() && line.boards().front().file != nullptr) {
        choice.board = &line.boards().front();
    }
    if (!line.countries().empty()) {
        choice.country = line.countries().front();
    }
    return choice;
}

std::string nameOf(const SetChoice& choice) {
    std::string name;
    const auto add = [&name](const char* part, const std::string& value) {
        name += (name.empty() ? "" : ",") + std::string(part) + value;
    };
    if (choice.model != nullptr) {
        add("model=", std::to_string(choice.model->index));
    }
    if (choice.board != nullptr) {
        add("board=", choice.board->name);
    }
    std::string country;
    if (product::countryNames().firstNameOf(choice.country, country) &&
        choice.country != kNoCountry) {
        add("country=", country);
    }
    return name;
}

std::string_view nameOf(Layer layer) {
    switch (layer) {
        case Layer::MODEL:
            return "model";
        case Layer::BOARD:
            return "board";
        case Layer::COUNTRY:
            break;
    }
    return "country";
}

SetModel::SetModel(const ProductLine& line, const SetChoice& choice)
    : mLine(line), mChoice(choice) {
    if (choice.model != nullptr) {
        addLines(asProject(line.tree(), choice.model->file, mOwnModel), Layer::MODEL);
    }
    if (choice.board != nullptr) {
        addLines(asProject(line.tree(), choice.board->file, mOwnBoard), Layer::BOARD);
    }
    findCountry();
    applyCountry();
}

SetModel::~SetModel() = default;

void SetModel::addLines(const FileLines* file, Layer layer) {
    if (file == nullptr) {
        return;
    }
    for (const ReadLine& read : file->lines()) {
        if (read.use != LineUse::ITEM) {
            continue;
        }
        SetItem& item = mItems[{read.section, read.key}];
        item.section = read.section;
        item.key = read.key;
        item.history.push_back({read.value, file, &read, layer});
    }
}

void SetModel::findCountry() {
    const std::string_view file = valueOf(product::item::kTvSystems);
    if (file.empty()) {
        return;
    }
    const std::string path = pathOf(file);
    for (const TvSystemFiles& files : mLine.tvSystems()) {
        if (files.file->path() == path) {
            mTvSystems = &files;
        }
    }
    if (mTvSystems == nullptr) {
        return;
    }
    const CountryBrings brings = CountryItems(*mTvSystems).of(mChoice.country);
    mTvSystem = brings.tvSystem;
    mRecord = brings.record;
    for (const BroughtItem& item : brings.items) {
        mCountryItems.push_back(
                {item.section, item.key, {{item.value, item.file, item.line, Layer::COUNTRY}}});
    }
}

void SetModel::applyCountry() {
    for (const SetItem& brought : mCountryItems) {
        const auto item = mItems.find({brought.section, brought.key});
        if (item != mItems.end()) {
            item->second.history.push_back(brought.current());
        }
    }
}

const SetItem* SetModel::find(std::string_view section, std::string_view key) const {
    const auto item = mItems.find({section, key});
    return item != mItems.end() ? &item->second : nullptr;
}

std::string_view SetModel::valueOf(const ConfigKey& name) const {
    const SetItem* const item = find(name.category, name.key);
    return item != nullptr ? item->current().value : std::string_view();
}

std::string_view SetModel::startValueOf(const ConfigKey& name) const {
    const SetItem* const item = find(name.category, name.key);
    std::string_view value;
    for (const Origin& origin : item != nullptr ? item->history : std::vector<Origin>()) {
        if (origin.layer != Layer::COUNTRY) {
            value = origin.value;
        }
    }
    return value;
}

std::string SetModel::pathOf(std::string_view value) const {
    return mLine.tree().relative(mLine.tree().hostOfWritten(value));
}

SetProduct& SetModel::product() const {
    if (mProduct == nullptr) {
        mProduct = std::make_unique<SetProduct>(mLine, mChoice);
    }
    return *mProduct;
}

}  // namespace mlk::tree
