#include "tools/mlktree/diff/SetFilter.h"

#include <algorithm>

#include "tools/common/Text.h"
#include "tools/mlktree/CountryNames.h"
#include "tools/mlktree/set/SetCountry.h"

namespace mlk::tree {

namespace {

std::string_view withoutSlash(std::string_view path) {
    return path.substr(!path.empty() && path.front() == '/' ? 1 : 0);
}

// Whether an argument names a file of a partition: as the files write it, relative to the tree, or
// by a path that leads to it from elsewhere.
bool namesFile(std::string_view argument, std::string_view file) {
    const std::string_view path = withoutSlash(file);
    const std::string_view given = withoutSlash(argument);
    if (path.empty() || given.size() < path.size()) {
        return false;
    }
    const size_t before = given.size() - path.size();
    return given.substr(before) == path && (before == 0 || given[before - 1] == '/');
}

}  // namespace

SetFilter::SetFilter(const Selection& selection)
    : mModel(selection.model), mBoard(selection.board), mCustomers(selection.customers) {
    if (!selection.country.empty()) {
        mCountry = countryOfOption(selection.country);
    }
}

bool SetFilter::fits(const AnswerBoard& board) const {
    return mBoard.empty() || mBoard == board.name || namesFile(mBoard, board.file);
}

bool SetFilter::fits(const AnswerCustomer& customer) const {
    return mCustomers.empty() ||
           std::any_of(mCustomers.begin(), mCustomers.end(), [&](const std::string& one) {
               return namesFile(one, customer.file) ||
                      withoutSlash(customer.file) == "tvconfigs/" + one;
           });
}

bool SetFilter::fitsCountry(std::string_view country) const {
    return !mCountry || countryOf(country) == mCountry;
}

bool SetFilter::fitsCountry(const LineAnswers& line, const AnswerSet& set) const {
    return set.country == kNone ? !mCountry || *mCountry == kNoCountry
                                : fitsCountry(line.countries[set.country]);
}

bool SetFilter::fits(const LineAnswers& line, const AnswerSet& set) const {
    const bool fitsModel = set.model == kNone ? !mModel : fits(line.models[set.model]);
    return fitsModel && fitsCountry(line, set) && fits(line.boards[set.board]) &&
           fits(line.customers[set.customer]);
}

void SetFilter::mustFitSomeOf(const LineAnswers& a, const LineAnswers& b) const {
    const auto demand = [&](const auto& fits, const std::string& option) {
        if (!fits(a) && !fits(b)) {
            throw UsageError(option + ": neither side has such a set");
        }
    };
    const auto isIn = [this](const auto& all) {
        return std::any_of(all.begin(), all.end(), [&](const auto& one) { return fits(one); });
    };
    if (mModel) {
        demand([&](const LineAnswers& line) { return isIn(line.models); },
               "--model " + std::to_string(*mModel));
    }
    demand([&](const LineAnswers& line) { return isIn(line.boards); },
           "--board " + printable(mBoard));
    demand([&](const LineAnswers& line) { return isIn(line.customers); },
           "--customer " + printable(joined(mCustomers)));
    if (mCountry) {
        demand(
                [this](const LineAnswers& line) {
                    return std::any_of(
                            line.sets.begin(), line.sets.end(),
                            [&](const AnswerSet& set) { return fitsCountry(line, set); });
                },
                "--country " + countryName(*mCountry));
    }
}

}  // namespace mlk::tree
