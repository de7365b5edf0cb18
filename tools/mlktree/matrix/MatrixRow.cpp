#include "tools/mlktree/matrix/MatrixRow.h"

#include <array>
#include <set>

#include "tools/mlktree/Patterns.h"

namespace mlk::tree {

std::string_view nameOf(RowKind kind) {
    constexpr std::array<std::string_view, kRowKinds> kNames = {"item", "feature", "framework",
                                                                "plan"};
    return kNames[static_cast<size_t>(kind)];
}

std::string MatrixRow::name() const {
    return std::string(kind == RowKind::ITEM ? section : nameOf(kind)) + " " + std::string(key);
}

bool isChosen(const MatrixRow& row, const std::string& pattern) {
    const bool isSection =
            !pattern.empty() && (pattern == row.section || "[" + pattern + "]" == row.section);
    const bool isKind = row.kind != RowKind::ITEM && pattern == nameOf(row.kind);
    return isSection || isKind || pattern == row.key || fitsWildcards(pattern, row.name());
}

std::vector<MatrixRow> rowsOf(const LineAnswers& line) {
    // Sets share pieces: each is looked at once.
    std::set<uint32_t> itemPieces;
    std::set<uint32_t> featurePieces;
    std::set<uint32_t> frameworkPieces;
    for (const AnswerPieces& pieces : line.pieces) {
        itemPieces.insert(pieces.items.begin(), pieces.items.end());
        featurePieces.insert(pieces.features);
        frameworkPieces.insert(pieces.framework);
    }
    std::vector<bool> isItem(line.names.size());
    for (const uint32_t number : itemPieces) {
        for (const AnswerItem& item : line.itemPiece(number)) {
            isItem[item.name] = true;
        }
    }
    std::vector<MatrixRow> rows;
    for (size_t i = 0; i < line.names.size(); ++i) {
        if (isItem[i]) {
            rows.push_back({RowKind::ITEM, line.names[i].section, line.names[i].key});
        }
    }
    const auto add = [&rows](RowKind kind, const std::set<std::string_view>& keys) {
        for (const std::string_view key : keys) {
            rows.push_back({kind, "", key});
        }
    };
    const auto methodsOf = [&line](const std::set<uint32_t>& pieces) {
        std::set<std::string_view> methods;
        for (const uint32_t number : pieces) {
            for (const AnswerFeature& feature : line.featurePiece(number)) {
                methods.insert(feature.method);
            }
        }
        return methods;
    };
    add(RowKind::FEATURE, methodsOf(featurePieces));
    add(RowKind::FRAMEWORK, methodsOf(frameworkPieces));
    std::set<std::string_view> plans;
    for (const PlanPiece& piece : line.plans) {
        for (const AnswerPlan& plan : piece) {
            plans.insert(plan.kind);
        }
    }
    add(RowKind::PLAN, plans);
    return rows;
}

}  // namespace mlk::tree
