#include "tools/mlktree/answers/SnapshotUses.h"

#include <map>
#include <string_view>
#include <utility>

namespace mlk::tree {

void PieceUses::number() {
    mNumbers.assign(mUses.size(), kNone);
    for (uint32_t piece = 0; piece < mUses.size(); ++piece) {
        if (mUses[piece] > 1) {
            mNumbers[piece] = static_cast<uint32_t>(mShared.size());
            mShared.push_back(piece);
        }
    }
}

namespace {

std::vector<uint32_t> firstLike(const std::vector<PlanPiece>& plans) {
    std::map<std::vector<std::pair<std::string_view, uint32_t>>, uint32_t> known;
    std::vector<uint32_t> first;
    for (const PlanPiece& piece : plans) {
        std::vector<std::pair<std::string_view, uint32_t>> content;
        for (const AnswerPlan& plan : piece) {
            content.emplace_back(plan.kind, plan.channels);
        }
        const auto number = static_cast<uint32_t>(first.size());
        first.push_back(known.try_emplace(std::move(content), number).first->second);
    }
    return first;
}

}  // namespace

SnapshotUses::SnapshotUses(const LineAnswers& line)
    : plansLike(firstLike(line.plans)),
      answers(line.pieces.size()),
      items(line.items.size()),
      auxiliary(line.items.size()),
      features(line.features.size()),
      delays(line.delays.size()),
      lists(line.lists.size()),
      plans(line.plans.size()),
      channels(line.channels.size()) {
    for (const AnswerSet& set : line.sets) {
        answers.add(set.pieces);
        plans.add(set.plans == kNone ? kNone : plansLike[set.plans]);
    }
    // Whatever many sets share is written once, so each of these stands in the file once.
    for (const AnswerPieces& pieces : line.pieces) {
        for (const uint32_t layer : pieces.items) {
            items.add(layer);
        }
        for (const uint32_t piece : {pieces.karaoke, pieces.keys, pieces.ddcci}) {
            auxiliary.add(piece);
        }
        for (const uint32_t piece : {pieces.features, pieces.framework}) {
            features.add(piece);
        }
        delays.add(pieces.delays);
        for (const uint32_t piece : {pieces.countries, pieces.cltvCountries, pieces.languages}) {
            lists.add(piece);
        }
    }
    for (uint32_t piece = 0; piece < line.plans.size(); ++piece) {
        for (const AnswerPlan& plan : line.plans[piece]) {
            channels.add(plansLike[piece] == piece ? plan.channels : kNone);
        }
    }
    for (PieceUses* const uses :
         {&answers, &items, &auxiliary, &features, &delays, &lists, &plans, &channels}) {
        uses->number();
    }
}

}  // namespace mlk::tree
