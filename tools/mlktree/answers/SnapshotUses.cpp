#include "tools/mlktree/answers/SnapshotUses.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

namespace mlk::tree {

void PieceUses::addAll(std::vector<uint32_t> numbers, bool isOfOneSet) {
    if (isOfOneSet) {
        std::sort(numbers.begin(), numbers.end());
        numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    }
    for (const uint32_t number : numbers) {
        add(number);
    }
}

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
        plans.add(plansOf(set));
    }
    answers.number();
    plans.number();
    for (uint32_t number = 0; number < line.pieces.size(); ++number) {
        const AnswerPieces& pieces = line.pieces[number];
        const bool isOfOne = !answers.isShared(number);
        items.addAll({pieces.items.begin(), pieces.items.end()}, isOfOne);
        auxiliary.addAll({pieces.karaoke, pieces.keys, pieces.ddcci}, isOfOne);
        features.addAll({pieces.features, pieces.framework}, isOfOne);
        delays.addAll({pieces.delays}, isOfOne);
        lists.addAll({pieces.countries, pieces.cltvCountries, pieces.languages}, isOfOne);
    }
    for (uint32_t number = 0; number < line.plans.size(); ++number) {
        std::vector<uint32_t> numbers;
        for (const AnswerPlan& plan : line.plans[number]) {
            numbers.push_back(plan.channels);
        }
        if (plansLike[number] == number) {
            channels.addAll(std::move(numbers), !plans.isShared(number));
        }
    }
    for (PieceUses* const uses : {&items, &auxiliary, &features, &delays, &lists, &channels}) {
        uses->number();
    }
}

}  // namespace mlk::tree
