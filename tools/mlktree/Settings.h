#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/mlktree/Finding.h"

namespace mlk::tree {

/** Type of a value of the line's own keys. */
enum class OwnType { TEXT, PATH, BOOLEAN, INTEGER, CHOICE, PATTERN };

/** An item that mlktree.toml declares: the service does not know it, the line's programs do. */
struct OwnKey {
    std::string section; /**< with its brackets; may hold "*" and "?" */
    std::string key;     /**< may hold "*" and "?" */
    OwnType type = OwnType::TEXT;
    std::optional<int64_t> least;     /**< of INTEGER */
    std::optional<int64_t> most;      /**< of INTEGER */
    std::vector<std::string> choices; /**< of CHOICE */
    std::string pattern;              /**< of PATTERN: an ECMAScript regular expression */
    bool isRequired = false;          /**< every model must have it */
    std::string remark;               /**< `mlktree explain` shows it */
    size_t line = 0;                  /**< in mlktree.toml */
};

/** A rule that is switched off or has another severity for some files. */
struct RuleSetting {
    std::string rule;  /**< its name; "*" for all */
    std::string files; /**< pattern of paths relative to the tree; "**" for any number of folders */
    Severity severity = Severity::OFF;
    std::string reason; /**< never empty for OFF */
    size_t line = 0;    /**< in mlktree.toml */
};

/** Findings that are allowed, for files that can hold no comment. */
struct Allowance {
    std::string rule;
    std::string files;  /**< as in RuleSetting */
    std::string text;   /**< the source line without blanks at its ends; empty for any */
    std::string reason; /**< never empty */
    size_t line = 0;    /**< in mlktree.toml */
};

/** What mlktree.toml at the top of a tree says. */
struct Settings {
    std::vector<OwnKey> keys;
    std::vector<RuleSetting> rules;
    std::vector<Allowance> allowances;

    /** The declaration of an item, or null. */
    const OwnKey* find(std::string_view section, std::string_view key) const;
    /** True if some key of that section is declared. */
    bool knowsSection(std::string_view section) const;
};

/** The name of a type in mlktree.toml: "integer". */
std::string_view nameOf(OwnType type);

/**
 * Reads mlktree.toml.
 *
 * @param path  a file of this machine; if nothing has that path, the settings are empty
 * @throw UsageError with file, line and column, what is wrong and what would be right
 */
Settings readSettings(const std::string& path);

}  // namespace mlk::tree
