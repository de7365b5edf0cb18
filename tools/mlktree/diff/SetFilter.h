#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "regional/CountryTable.h"
#include "tools/mlktree/ProductLine.h"
#include "tools/mlktree/answers/LineAnswers.h"

namespace mlk::tree {

/**
 * Chooses sets of answers by what --model, --board, --customer and --country say. It knows the
 * answers only, so that it works for a snapshot as for a tree.
 */
class SetFilter {
  public:
    /** Chooses all sets. */
    SetFilter() = default;
    /** @throw UsageError if the service knows no such country */
    explicit SetFilter(const Selection& selection);

    bool fits(const AnswerModel& model) const { return !mModel || *mModel == model.index; }
    /** A board is named by its file's name, or by its path. */
    bool fits(const AnswerBoard& board) const;
    /** A customer is named by the path of its file. */
    bool fits(const AnswerCustomer& customer) const;
    /** Of a line with several customers, a country fits if one of those that fit has it. */
    bool fitsCountry(const LineAnswers& line, std::string_view country) const;
    bool fits(const LineAnswers& line, const AnswerSet& set) const;

    bool fitsSomeBoard(const LineAnswers& line) const;
    bool fitsSomeCustomer(const LineAnswers& line) const;
    bool fitsSomeCountry(const LineAnswers& line) const;

    /** @throw UsageError if an option fits nothing of either line; the message names it */
    void mustFitSomeOf(const LineAnswers& a, const LineAnswers& b) const;

  private:
    bool fitsCountry(const LineAnswers& line, const AnswerSet& set) const;

    std::optional<int32_t> mModel;
    std::string mBoard;  // empty for all, as are the ones below
    std::vector<std::string> mCustomers;
    std::optional<_tv_country> mCountry;
};

}  // namespace mlk::tree
