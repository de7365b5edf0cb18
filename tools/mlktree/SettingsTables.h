#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mlk::tree {

/** One key of a table of mlktree.toml. */
struct SettingsKey {
    std::string_view name;
    std::string_view value; /**< its form: "\"RULE\"", "N", "true or false" */
    bool isRequired;
    std::string_view what; /**< one or more sentences */
};

/** One kind of table of mlktree.toml. */
struct SettingsTable {
    std::string_view name; /**< "rule" for [[rule]] */
    std::string_view what; /**< sentences */
    std::vector<SettingsKey> keys;
    std::string_view example; /**< lines of TOML that readSettings() takes */

    /** The names of its keys. */
    std::vector<std::string_view> keyNames() const;
};

/**
 * All tables of mlktree.toml. readSettings() refuses others; `mlktree settings` and the manual page
 * describe them.
 */
const std::vector<SettingsTable>& settingsTables();

/** The table of that name, one of settingsTables(). */
const SettingsTable& settingsTable(std::string_view name);

/** A pattern of paths, a reason, ...: what holds for several keys, one sentence a line. */
std::vector<std::string_view> settingsRemarks();

}  // namespace mlk::tree
