#include "tools/mlktree/matrix/Matrix.h"

#include <algorithm>
#include <set>
#include <unordered_map>
#include <utility>

#include "common/Paths.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

/** The cells of the pieces of items: row and value, for the rows that are chosen. */
class ItemCells {
  public:
    ItemCells(const LineAnswers& line, const std::vector<MatrixRow>& rows, MatrixValues& values)
        : mLine(line), mValues(values) {
        for (const MatrixRow& row : rows) {
            mNames.push_back(line.find(row.section, row.key));
        }
    }

    MatrixCells of(const AnswerPieces& pieces) {
        MatrixCells cells(mNames.size(), MatrixValues::kNothing);
        for (const uint32_t number : pieces.items) {
            for (const auto& [row, value] : of(number)) {
                cells[row] = value;
            }
        }
        return cells;
    }

  private:
    using Layer = std::vector<std::pair<size_t, uint32_t>>;

    const Layer& of(uint32_t number) {
        const auto [entry, isNew] = mLayers.try_emplace(number);
        if (isNew) {
            // Items and rows are in the order of names.
            size_t row = 0;
            for (const AnswerItem& item : mLine.itemPiece(number)) {
                while (row < mNames.size() && mNames[row] < item.name) {
                    ++row;
                }
                if (row < mNames.size() && mNames[row] == item.name) {
                    entry->second.emplace_back(row, mValues.of(item.value));
                }
            }
        }
        return entry->second;
    }

    const LineAnswers& mLine;
    MatrixValues& mValues;
    std::vector<uint32_t> mNames;  // ascending
    std::map<uint32_t, Layer> mLayers;
};

// The place of each key among the rows.
std::map<std::string_view, size_t> placesOf(const std::vector<MatrixRow>& rows) {
    std::map<std::string_view, size_t> places;
    for (size_t row = 0; row < rows.size(); ++row) {
        places[rows[row].key] = row;
    }
    return places;
}

MatrixCells featureCells(const std::vector<MatrixRow>& rows, const FeaturePiece& piece,
                         MatrixValues& values) {
    MatrixCells cells(rows.size(), MatrixValues::kNothing);
    const auto places = placesOf(rows);
    for (const AnswerFeature& feature : piece) {
        const auto place = places.find(feature.method);
        if (place != places.end()) {
            cells[place->second] = values.of(feature.value);
        }
    }
    return cells;
}

MatrixCells planCells(const std::vector<MatrixRow>& rows, const PlanPiece& piece,
                      const std::vector<std::string_view>& texts, MatrixValues& values) {
    MatrixCells cells(rows.size(), MatrixValues::kNothing);
    const auto places = placesOf(rows);
    for (const AnswerPlan& plan : piece) {
        const auto place = places.find(plan.kind);
        if (place != places.end() && plan.channels != kNone) {
            cells[place->second] = values.of(texts[plan.channels]);
        }
    }
    return cells;
}

}  // namespace

Matrix::Matrix(const LineAnswers& line, const MatrixChoice& choice) : mLine(line), mGroups(line) {
    for (const MatrixRow& row : rowsOf(line)) {
        const auto fits = [&row](const std::string& pattern) { return isChosen(row, pattern); };
        const auto& patterns = choice.patterns;
        if (patterns.empty() || std::any_of(patterns.begin(), patterns.end(), fits)) {
            mParts[static_cast<size_t>(row.kind)].rows.push_back(row);
        }
    }
    readSets();
    findColumns();
    choose(choice);
}

// The file of each plan and the number of its channels; with the folder if another plan of the line
// has a file of that name.
std::vector<std::string_view> Matrix::planTexts() {
    std::map<std::string_view, std::set<std::string_view>> pathsOf;
    std::vector<std::string_view> paths;
    for (const ChannelPiece& channels : mLine.channels) {
        const std::string_view path = channels.empty() ? "" : mLine.pathOf(channels.front().place);
        paths.push_back(path);
        pathsOf[product::fileNameOf(path)].insert(path);
    }
    std::vector<std::string_view> texts;
    for (size_t i = 0; i < paths.size(); ++i) {
        const std::string_view name = product::fileNameOf(paths[i]);
        std::string text(pathsOf[name].size() > 1 ? paths[i] : name);
        text += " (" + std::to_string(mLine.channels[i].size()) + ")";
        texts.push_back(mTexts.emplace_back(std::move(text)));
    }
    return texts;
}

void Matrix::readSets() {
    MatrixPart& items = partOf(RowKind::ITEM);
    MatrixPart& features = partOf(RowKind::FEATURE);
    MatrixPart& framework = partOf(RowKind::FRAMEWORK);
    MatrixPart& plans = partOf(RowKind::PLAN);
    ItemCells itemCells(mLine, items.rows, mValues);
    const std::vector<std::string_view> texts = planTexts();
    const auto cellsOf = [this](const MatrixPart& of, uint32_t piece) {
        return featureCells(of.rows, mLine.featurePiece(piece), mValues);
    };
    for (const AnswerSet& set : mLine.sets) {
        const AnswerPieces& pieces = mLine.pieces[set.pieces];
        const std::vector<uint32_t> layers(pieces.items.begin(), pieces.items.end());
        mKeys.push_back({items.numberOf(layers, [&] { return itemCells.of(pieces); }),
                         features.numberOf({pieces.features},
                                           [&] { return cellsOf(features, pieces.features); }),
                         framework.numberOf({pieces.framework},
                                            [&] { return cellsOf(framework, pieces.framework); }),
                         plans.numberOf({set.plans}, [&] {
                             return planCells(plans.rows, mLine.planPiece(set.plans), texts,
                                              mValues);
                         })});
    }
    for (size_t kind = 0; kind < kRowKinds; ++kind) {
        findUnits(kind);
    }
}

// Sets of a model and a board stand together.
void Matrix::findUnits(size_t kind) {
    std::vector<std::vector<uint32_t>> countries;
    std::map<std::array<uint32_t, 3>, size_t> places;
    std::vector<Unit>& found = mUnits[kind];
    for (size_t i = 0; i < mKeys.size(); ++i) {
        const AnswerSet& set = mLine.sets[i];
        const uint32_t part = mKeys[i][kind];
        const auto [entry, isNew] = places.try_emplace({set.model, set.board, part}, found.size());
        if (isNew) {
            found.push_back({set.model, set.board, part, 0});
            countries.emplace_back();
        }
        countries[entry->second].push_back(set.country);
    }
    for (size_t i = 0; i < found.size(); ++i) {
        std::sort(countries[i].begin(), countries[i].end());
        found[i].list = mGroups.listOf(countries[i]);
    }
}

void Matrix::findColumns() {
    std::map<Key, size_t> numbers;
    for (uint32_t set = 0; set < mKeys.size(); ++set) {
        const auto [entry, isNew] = numbers.try_emplace(mKeys[set], mColumns.size());
        if (isNew) {
            mColumns.emplace_back();
        }
        mColumns[entry->second].push_back(set);
    }
}

void Matrix::choose(const MatrixChoice& choice) {
    for (const MatrixPart& part : mParts) {
        for (size_t row = 0; row < part.rows.size(); ++row) {
            if (mKeys.empty() || (!choice.hasAll && !part.differs(row))) {
                ++mSameRows;
                continue;
            }
            mShown.push_back(part.rows[row]);
            mPlaces.push_back(row);
        }
    }
}

MatrixCell Matrix::cell(size_t row, size_t column) const {
    const RowKind kind = mShown[row].kind;
    const uint32_t number = mKeys[mColumns[column].front()][static_cast<size_t>(kind)];
    return mValues.text(part(kind).cell(number, mPlaces[row]));
}

std::vector<MatrixValue> Matrix::valuesOf(size_t row) const {
    const RowKind kind = mShown[row].kind;
    std::vector<std::pair<uint32_t, SetGroups::Builder>> values;
    std::unordered_map<uint32_t, size_t> places;
    for (const Unit& unit : units(kind)) {
        const uint32_t value = part(kind).cell(unit.part, mPlaces[row]);
        const auto [entry, isNew] = places.try_emplace(value, values.size());
        if (isNew) {
            values.emplace_back(value, SetGroups::Builder(mGroups));
        }
        values[entry->second].second.add(unit.model, unit.board, unit.list);
    }
    std::vector<MatrixValue> found;
    found.reserve(values.size());
    for (auto& [value, builder] : values) {
        found.push_back({mValues.text(value), builder.terms()});
    }
    return found;
}

}  // namespace mlk::tree
