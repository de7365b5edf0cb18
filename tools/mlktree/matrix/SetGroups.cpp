#include "tools/mlktree/matrix/SetGroups.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "tools/common/Json.h"
#include "tools/common/Text.h"

namespace mlk::tree {

namespace {

using Numbers = std::vector<uint32_t>;

/** Collects members under a key; the keys stay in the order of their first member. */
template <typename Key>
class InOrder {
  public:
    void add(const Key& key, uint32_t member) {
        const auto [entry, isNew] = mNumbers.try_emplace(key, mGroups.size());
        if (isNew) {
            mGroups.push_back({key, {}});
        }
        mGroups[entry->second].second.push_back(member);
    }
    const std::vector<std::pair<Key, Numbers>>& groups() const { return mGroups; }

  private:
    std::map<Key, size_t> mNumbers;
    std::vector<std::pair<Key, Numbers>> mGroups;
};

// "b1.ini, b2.ini and 3 more"
std::string some(const std::vector<std::string>& names, size_t most) {
    if (names.size() <= most) {
        return joined(names);
    }
    const auto end = names.begin() + static_cast<ptrdiff_t>(most);
    return joined({names.begin(), end}) + " and " + std::to_string(names.size() - most) + " more";
}

}  // namespace

SetGroups::SetGroups(const LineAnswers& line) : mLine(line) {
    std::set<uint32_t> models;
    std::set<uint32_t> boards;
    std::set<uint32_t> countries;
    for (const AnswerSet& set : line.sets) {
        models.insert(set.model);
        boards.insert(set.board);
        countries.insert(set.country);
    }
    mModels = models.size();
    mBoards = boards.size();
    mCountries.assign(countries.begin(), countries.end());
}

uint32_t SetGroups::listOf(const Numbers& countries) {
    const auto [entry, isNew] =
            mNumbers.try_emplace(countries, static_cast<uint32_t>(mLists.size()));
    if (isNew) {
        mLists.push_back(&entry->first);
    }
    return entry->second;
}

uint32_t SetGroups::unionOf(const Numbers& lists) {
    if (lists.size() == 1) {
        return lists.front();
    }
    const auto [entry, isNew] = mUnions.try_emplace(lists, 0);
    if (isNew) {
        Numbers countries;
        for (const uint32_t list : lists) {
            countries.insert(countries.end(), mLists[list]->begin(), mLists[list]->end());
        }
        std::sort(countries.begin(), countries.end());
        entry->second = listOf(countries);
    }
    return entry->second;
}

void SetGroups::Builder::add(uint32_t model, uint32_t board, uint32_t list) {
    if (mPairs.empty() || mPairs.back().model != model || mPairs.back().board != board) {
        mPairs.push_back({model, board, {}});
    }
    mPairs.back().lists.push_back(list);
}

std::vector<SetTerm> SetGroups::Builder::terms() {
    InOrder<std::pair<uint32_t, uint32_t>> boardsOf;  // by model and list of countries
    for (const Pair& pair : mPairs) {
        boardsOf.add({pair.model, mGroups->unionOf(pair.lists)}, pair.board);
    }
    InOrder<std::pair<Numbers, uint32_t>> modelsOf;  // by boards and list of countries
    for (const auto& [key, boards] : boardsOf.groups()) {
        modelsOf.add({boards, key.second}, key.first);
    }
    std::vector<SetTerm> terms;
    for (const auto& [key, models] : modelsOf.groups()) {
        const Numbers& countries = *mGroups->mLists[key.second];
        terms.push_back({models, key.first, countries, models.size() == mGroups->mModels,
                         key.first.size() == mGroups->mBoards,
                         countries.size() == mGroups->mCountries.size()});
    }
    return terms;
}

std::vector<SetTerm> SetGroups::termsOf(const Numbers& sets) {
    Builder builder(*this);
    for (size_t first = 0; first < sets.size();) {
        const AnswerSet& set = mLine.sets[sets[first]];
        Numbers countries;
        size_t at = first;
        for (; at < sets.size(); ++at) {
            const AnswerSet& other = mLine.sets[sets[at]];
            if (other.model != set.model || other.board != set.board) {
                break;
            }
            countries.push_back(other.country);
        }
        std::sort(countries.begin(), countries.end());
        builder.add(set.model, set.board, listOf(countries));
        first = at;
    }
    return builder.terms();
}

// The indexes of models; three and more that follow each other as "1 to 4".
std::vector<std::string> SetGroups::modelNames(const Numbers& models) const {
    constexpr size_t kLeastRun = 3;
    std::vector<std::string> names;
    for (size_t first = 0; first < models.size();) {
        if (models[first] == kNone) {
            names.emplace_back("none");
            ++first;
            continue;
        }
        const AnswerModel& model = mLine.models[models[first]];
        size_t end = first + 1;
        while (end < models.size() && models[end] != kNone &&
               mLine.models[models[end]].customer == model.customer &&
               mLine.models[models[end]].index == mLine.models[models[end - 1]].index + 1) {
            ++end;
        }
        std::string name = std::to_string(model.index);
        if (end - first >= kLeastRun) {
            name += " to " + std::to_string(mLine.models[models[end - 1]].index);
        } else {
            end = first + 1;
        }
        names.push_back(mLine.customers.size() == 1
                                ? name
                                : name + " of " +
                                          std::string(mLine.customers[model.customer].file));
        first = end;
    }
    return names;
}

// Countries, or those that are left out if they are the fewer ones.
std::string SetGroups::countryNames(const Numbers& countries, size_t most) const {
    const auto namesOf = [this](const Numbers& numbers) {
        std::vector<std::string> names;
        names.reserve(numbers.size());
        for (const uint32_t country : numbers) {
            names.emplace_back(country == kNone ? "no country" : mLine.countries[country]);
        }
        return names;
    };
    if (countries.size() * 2 <= mCountries.size()) {
        return some(namesOf(countries), most);
    }
    Numbers others;
    std::set_difference(mCountries.begin(), mCountries.end(), countries.begin(), countries.end(),
                        std::back_inserter(others));
    return "all but " + some(namesOf(others), most);
}

std::string SetGroups::nameOf(const SetTerm& term, const NameLimits& limits) const {
    std::string name;
    if (!term.hasAllModels) {
        name = (term.models.size() == 1 ? "model " : "models ") +
               some(modelNames(term.models), limits.models);
    }
    if (!term.hasAllBoards) {
        std::vector<std::string> boards;
        boards.reserve(term.boards.size());
        for (const uint32_t board : term.boards) {
            boards.emplace_back(mLine.boards[board].name);
        }
        name += (name.empty() ? "" : " with ") +
                std::string(boards.size() == 1 ? "board " : "boards ") +
                some(boards, limits.boards);
    }
    if (!term.hasAllCountries) {
        name += (name.empty() ? "" : " in ") + countryNames(term.countries, limits.countries);
    }
    return name.empty() ? "all sets" : name;
}

std::string SetGroups::nameOf(const std::vector<SetTerm>& terms, const NameLimits& limits) const {
    std::string name;
    for (size_t i = 0; i < std::min(terms.size(), limits.terms); ++i) {
        name += (i == 0 ? "" : "; ") + nameOf(terms[i], limits);
    }
    return name + (terms.size() > limits.terms
                           ? "; and " + std::to_string(terms.size() - limits.terms) + " more"
                           : "");
}

std::string SetGroups::jsonOf(const std::vector<SetTerm>& terms) const {
    std::vector<std::string> objects;
    for (const SetTerm& term : terms) {
        JsonObject object;
        if (!term.hasAllModels) {
            std::vector<std::string> models;
            for (const uint32_t model : term.models) {
                models.push_back(model == kNone ? "null"
                                                : std::to_string(mLine.models[model].index));
            }
            object.json("models", jsonArray(models));
            if (mLine.customers.size() > 1) {
                std::vector<std::string> customers;
                for (const uint32_t model : term.models) {
                    customers.emplace_back(
                            model == kNone ? ""
                                           : mLine.customers[mLine.models[model].customer].file);
                }
                object.json("customers", jsonTexts(customers));
            }
        }
        if (!term.hasAllBoards) {
            std::vector<std::string> boards;
            for (const uint32_t board : term.boards) {
                boards.emplace_back(mLine.boards[board].name);
            }
            object.json("boards", jsonTexts(boards));
        }
        if (!term.hasAllCountries) {
            std::vector<std::string> countries;
            for (const uint32_t country : term.countries) {
                countries.push_back(country == kNone ? "null"
                                                     : jsonString(mLine.countries[country]));
            }
            object.json("countries", jsonArray(countries));
        }
        objects.push_back(object.str());
    }
    return jsonArray(objects);
}

}  // namespace mlk::tree
