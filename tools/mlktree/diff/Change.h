#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mlk::tree {

/** What a difference is about. */
enum class ChangeKind {
    MODEL,
    BOARD,
    CUSTOMER,
    ITEM,
    FEATURE,
    FRAMEWORK,
    DELAY,
    AUXILIARY,
    COUNTRY,
    LANGUAGE,
    PLAN,
    FILE,
};

/** Every kind, in the order in which differences are told. */
inline constexpr ChangeKind kChangeKinds[] = {
        ChangeKind::MODEL,   ChangeKind::BOARD,     ChangeKind::CUSTOMER, ChangeKind::ITEM,
        ChangeKind::FEATURE, ChangeKind::FRAMEWORK, ChangeKind::DELAY,    ChangeKind::AUXILIARY,
        ChangeKind::COUNTRY, ChangeKind::LANGUAGE,  ChangeKind::PLAN,     ChangeKind::FILE,
};

/** "item", "feature" and so on, as in JSON. */
std::string_view nameOf(ChangeKind kind);

/** "Items", "TV features" and so on, for people. */
std::string_view titleOf(ChangeKind kind);

/** A value on one side of a comparison, and where it stands. */
struct ChangeSide {
    std::string value;
    std::string file; /**< relative to the tree; empty if no file is known */
    uint32_t line = 0;
};

/** Some sets: those with any of these models, boards and countries. Empty stands for all. */
struct SetGroup {
    std::vector<std::string> models; /**< "2", or "2 of tvconfigs/customer_b.ini" */
    std::vector<std::string> boards;
    std::vector<std::string> countries;

    bool operator==(const SetGroup& other) const {
        return models == other.models && boards == other.boards && countries == other.countries;
    }

    bool isAll() const { return models.empty() && boards.empty() && countries.empty(); }
};

/** One difference, with the sets that it reaches. */
struct Change {
    ChangeKind kind = ChangeKind::ITEM;
    std::string name;            /**< "[PANEL] m_pPanelName" */
    std::string receiver;        /**< of a sound delay; its name ends with it */
    std::optional<ChangeSide> a; /**< nothing if that side has nothing */
    std::optional<ChangeSide> b;
    std::vector<SetGroup> sets; /**< empty if two sets are compared */
};

/** What differs between two sets or two lines. */
struct Difference {
    std::string a; /**< as the command line names it */
    std::string b;
    bool isOfSets = false;
    std::vector<Change> changes; /**< by kind, then in the order of names */
};

/** "GERMANY, FRANCE and 40 more"; runs of numbers as "2 to 9". Safe for a terminal. */
std::string listed(const std::vector<std::string>& names);

/** "models 2, 3; all boards". */
std::string inWords(const std::vector<SetGroup>& groups);

/** "model=2,board=b1.ini" for each combination; "all". */
std::vector<std::string> inSelections(const std::vector<SetGroup>& groups);

}  // namespace mlk::tree
