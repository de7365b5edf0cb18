#include "tools/mlktree/diff/Reach.h"

#include <numeric>

namespace mlk::tree {

Reach::Reach(const LineAnswers& line, const std::vector<uint32_t>& sets)
    : mLine(line), mSets(sets), mEvery(sets.size()) {
    std::iota(mEvery.begin(), mEvery.end(), 0U);
    mAll = modelsOf(mEvery);
}

std::map<uint32_t, Reach::Boards> Reach::modelsOf(const std::vector<uint32_t>& positions) const {
    std::map<uint32_t, Boards> models;
    for (const uint32_t position : positions) {
        const AnswerSet& set = mLine.sets[mSets[position]];
        models[set.model][set.board].push_back(set.country);
    }
    return models;
}

std::string Reach::modelName(uint32_t model) const {
    if (model == kNone) {
        return "none";
    }
    const AnswerModel& one = mLine.models[model];
    return std::to_string(one.index) +
           (mLine.customers.size() > 1 ? " of " + std::string(mLine.customers[one.customer].file)
                                       : "");
}

std::vector<SetGroup> Reach::groupsOf(const std::vector<uint32_t>& positions) const {
    if (positions.size() == mSets.size()) {
        return {SetGroup()};
    }
    // Of each model, which boards have which countries. An empty list stands for all of them.
    using Pattern = std::map<Countries, std::vector<uint32_t>>;
    std::map<Pattern, std::vector<uint32_t>> models;
    for (const auto& [model, boards] : modelsOf(positions)) {
        const Boards& all = mAll.at(model);
        Pattern pattern;
        for (const auto& [board, countries] : boards) {
            const bool isAll = countries == all.at(board);
            pattern[isAll ? Countries() : countries].push_back(board);
        }
        if (pattern.size() == 1 && pattern.begin()->second.size() == all.size()) {
            pattern.begin()->second.clear();
        }
        models[pattern].push_back(model);
    }
    // In the order of the first model of each.
    std::map<uint32_t, const std::pair<const Pattern, std::vector<uint32_t>>*> ordered;
    for (const auto& one : models) {
        ordered[one.second.front()] = &one;
    }
    std::vector<SetGroup> groups;
    for (const auto& [first, one] : ordered) {
        const auto& [pattern, numbers] = *one;
        for (const auto& [countries, boards] : pattern) {
            SetGroup& group = groups.emplace_back();
            if (numbers.size() < mAll.size()) {
                for (const uint32_t model : numbers) {
                    group.models.push_back(modelName(model));
                }
            }
            for (const uint32_t board : boards) {
                group.boards.emplace_back(mLine.boards[board].name);
            }
            for (const uint32_t country : countries) {
                group.countries.emplace_back(country == kNone ? std::string_view("none")
                                                              : mLine.countries[country]);
            }
        }
    }
    return groups;
}

}  // namespace mlk::tree
