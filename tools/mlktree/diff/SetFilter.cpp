#include "tools/mlktree/diff/SetFilter.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "tools/common/Text.h"
#include "tools/mlktree/CountryNames.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/set/SetCountry.h"

namespace mlk::tree {

namespace {

std::string_view withoutSlash(std::string_view path) {
    return path.substr(beginsWith(path, "/") ? 1 : 0);
}

// A path without "." and double slashes, as those that it is compared with.
std::string plainPath(const std::string& argument) {
    return std::filesystem::path(argument).lexically_normal().string();
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
    : mModel(selection.model), mBoard(plainPath(selection.board)) {
    std::transform(selection.customers.begin(), selection.customers.end(),
                   std::back_inserter(mCustomers), plainPath);
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

bool SetFilter::fitsCountry(const LineAnswers& line, std::string_view country) const {
    if (mCountry && countryOf(country) != mCountry) {
        return false;
    }
    return mCustomers.empty() ||
           std::any_of(line.customers.begin(), line.customers.end(),
                       [&](const AnswerCustomer& one) {
                           const bool isOf = !one.countries || one.countries->count(country) > 0;
                           return isOf && fits(one);
                       });
}

bool SetFilter::fitsCountry(const LineAnswers& line, const AnswerSet& set) const {
    return set.country == kNone ? !mCountry || *mCountry == kNoCountry
                                : fitsCountry(line, line.countries[set.country]);
}

bool SetFilter::fits(const LineAnswers& line, const AnswerSet& set) const {
    const bool fitsModel = set.model == kNone ? !mModel : fits(line.models[set.model]);
    return fitsModel && fitsCountry(line, set) && fits(line.boards[set.board]) &&
           fits(line.customers[set.customer]);
}

bool SetFilter::fitsSomeBoard(const LineAnswers& line) const {
    return std::any_of(line.boards.begin(), line.boards.end(),
                       [&](const AnswerBoard& one) { return fits(one); });
}

bool SetFilter::fitsSomeCustomer(const LineAnswers& line) const {
    return std::any_of(line.customers.begin(), line.customers.end(),
                       [&](const AnswerCustomer& one) { return fits(one); });
}

bool SetFilter::fitsSomeCountry(const LineAnswers& line) const {
    return std::any_of(line.sets.begin(), line.sets.end(),
                       [&](const AnswerSet& set) { return fitsCountry(line, set); });
}

void SetFilter::mustFitSomeOf(const LineAnswers& a, const LineAnswers& b) const {
    const auto demand = [&](const auto& fits, const std::string& option) {
        if (!fits(a) && !fits(b)) {
            throw UsageError(option + ": neither side has such a set");
        }
    };
    if (mModel) {
        demand(
                [this](const LineAnswers& line) {
                    return std::any_of(line.models.begin(), line.models.end(),
                                       [&](const AnswerModel& one) { return fits(one); });
                },
                "--model " + std::to_string(*mModel));
    }
    demand([this](const LineAnswers& line) { return fitsSomeBoard(line); },
           "--board " + printable(mBoard));
    demand([this](const LineAnswers& line) { return fitsSomeCustomer(line); },
           "--customer " + printable(joined(mCustomers)));
    if (mCountry) {
        demand([this](const LineAnswers& line) { return fitsSomeCountry(line); },
               "--country " + countryName(*mCountry));
    }
}

}  // namespace mlk::tree
