// Reads mlktree.toml.

#include <algorithm>
#include <array>
#include <regex>

#include "tools/common/Suggest.h"
#include "tools/common/Text.h"
#include "tools/mlktree/FileText.h"
#include "tools/mlktree/Patterns.h"
#include "tools/mlktree/Rule.h"
#include "tools/mlktree/Settings.h"
#include "tools/mlktree/SettingsTables.h"
#include "tools/mlktree/TomlTable.h"
#include "tools/mlktree/Tree.h"

namespace mlk::tree {

namespace {

constexpr size_t kMostPattern = 1000;  // the pattern is compiled by recursion

constexpr std::array kTypes = {OwnType::TEXT,    OwnType::PATH,   OwnType::BOOLEAN,
                               OwnType::INTEGER, OwnType::CHOICE, OwnType::PATTERN};
constexpr std::array kSeverities = {Severity::OFF, Severity::NOTE, Severity::WARNING,
                                    Severity::ERROR};

// The value whose name the key has.
template <typename Value, size_t COUNT>
Value choiceOf(const TomlTable& table, std::string_view key,
               const std::array<Value, COUNT>& values) {
    const std::string given = table.text(key);
    std::vector<std::string_view> names;
    std::vector<std::string> list;
    for (const Value value : values) {
        if (nameOf(value) == given) {
            return value;
        }
        names.push_back(nameOf(value));
        list.emplace_back(nameOf(value));
    }
    table.refuse(key, "\"" + std::string(key) + "\" is one of " + joined(list) + ", not " +
                              excerpt(given) + didYouMean(given, names, ""));
}

// The name of a rule; "*" for all if that is allowed.
std::string ruleOf(const TomlTable& table, bool mayBeAll) {
    std::string name = table.text("rule");
    if (findRule(name) != nullptr || (mayBeAll && name == "*")) {
        return name;
    }
    table.refuse("rule", noRule(name));
}

std::string patternOfPaths(const TomlTable& table) {
    std::string pattern = table.text("files", "**");
    if (pattern.empty() || pattern.front() == '/') {
        table.refuse("files",
                     "\"files\" is relative to the tree: \"tvconfigs/model/*.ini\", \"**\" for all "
                     "files");
    }
    return pattern;
}

std::string reasonOf(const TomlTable& table) {
    std::string reason = table.text("reason");
    if (reason.find_first_not_of(" \t\n") == std::string::npos) {
        table.refuse("reason", "the reason is empty; say why the finding is right as it is");
    }
    return reason;
}

RuleSetting readRule(const TomlTable& table) {
    RuleSetting setting;
    setting.rule = ruleOf(table, true);
    setting.files = patternOfPaths(table);
    setting.severity = choiceOf(table, "severity", kSeverities);
    if (setting.severity == Severity::OFF && !table.has("reason")) {
        table.refuse("severity", "a rule is switched off with a reason only: reason = \"...\"");
    }
    if (table.has("reason")) {
        setting.reason = reasonOf(table);
    }
    setting.line = table.line();
    return setting;
}

Allowance readAllowance(const TomlTable& table) {
    Allowance allowance;
    allowance.rule = ruleOf(table, false);
    allowance.files = patternOfPaths(table);
    allowance.text = table.text("text", "");
    allowance.reason = reasonOf(table);
    allowance.line = table.line();
    return allowance;
}

void readRange(const TomlTable& table, OwnKey& key) {
    key.least = table.integer("least");
    key.most = table.integer("most");
    if (key.type != OwnType::INTEGER && (key.least || key.most)) {
        table.refuse(key.least ? "least" : "most",
                     "only a key of type \"integer\" has \"least\" and \"most\"");
    }
    if (key.least && key.most && *key.least > *key.most) {
        table.refuse("least", "\"least\" is more than \"most\"; swap them");
    }
}

void readChoices(const TomlTable& table, OwnKey& key) {
    if (key.type != OwnType::CHOICE) {
        if (table.has("choices")) {
            table.refuse("choices", "only a key of type \"choice\" has \"choices\"");
        }
        return;
    }
    key.choices = table.texts("choices");
    if (key.choices.empty()) {
        table.refuse("choices", "\"choices\" is empty; list the texts that are allowed");
    }
}

void readPattern(const TomlTable& table, OwnKey& key) {
    if (key.type != OwnType::PATTERN) {
        if (table.has("pattern")) {
            table.refuse("pattern", "only a key of type \"pattern\" has a \"pattern\"");
        }
        return;
    }
    key.pattern = table.text("pattern");
    if (key.pattern.size() > kMostPattern) {
        table.refuse("pattern", "the pattern is longer than " + std::to_string(kMostPattern) +
                                        " bytes; shorten it");
    }
    try {
        (void)valuePattern(key.pattern);
    } catch (const std::regex_error& error) {
        table.refuse("pattern", excerpt(key.pattern) +
                                        " is no regular expression of ECMAScript that can be "
                                        "used (" +
                                        error.what() + ")");
    }
}

OwnKey readKey(const TomlTable& table) {
    OwnKey key;
    key.section = table.text("section");
    if (!key.section.empty() && key.section.front() != '[') {
        key.section = "[" + key.section + "]";
    }
    key.key = table.text("key");
    if (key.key.empty()) {
        table.refuse("key", "the key is empty; name one, or \"*\" for all of the section");
    }
    key.type = table.has("type") ? choiceOf(table, "type", kTypes) : OwnType::TEXT;
    readRange(table, key);
    readChoices(table, key);
    readPattern(table, key);
    key.isRequired = table.boolean("required");
    if (key.isRequired && (key.section + key.key).find_first_of("*?") != std::string::npos) {
        table.refuse("required", "a key with \"*\" or \"?\" cannot be required; name it in full");
    }
    key.remark = table.text("remark", "");
    key.line = table.line();
    return key;
}

// Calls read for each table of an array of tables.
template <typename Read>
void forEachTable(const std::string& path, const toml::table& root, const char* name, Read read) {
    const toml::node* node = root.get(name);
    if (node == nullptr) {
        return;
    }
    const std::string heading = "[[" + std::string(name) + "]]";
    const toml::array* array = node->as_array();
    if (array == nullptr) {
        refuseAt(path, node->source(), "write " + heading + " for each of these tables");
    }
    for (const toml::node& entry : *array) {
        const toml::table* table = entry.as_table();
        if (table == nullptr) {
            refuseAt(path, entry.source(), "write " + heading + " and its keys below");
        }
        const TomlTable entries(path, heading, *table);
        entries.allowOnly(settingsTable(name).keyNames());
        read(entries);
    }
}

void addKey(Settings& settings, const TomlTable& table) {
    const OwnKey key = readKey(table);
    for (const OwnKey& other : settings.keys) {
        if (other.section == key.section && other.key == key.key) {
            table.refuse("key", "line " + std::to_string(other.line) + " declares " + key.section +
                                        " " + key.key + " already; leave one of them out");
        }
    }
    settings.keys.push_back(key);
}

void checkHeadings(const std::string& path, const toml::table& root) {
    std::vector<std::string_view> known;
    std::vector<std::string> headings;
    for (const SettingsTable& table : settingsTables()) {
        known.push_back(table.name);
        headings.push_back("[[" + std::string(table.name) + "]]");
    }
    for (const auto& [key, node] : root) {
        if (std::find(known.begin(), known.end(), key.str()) == known.end()) {
            refuseAt(path, key.source(),
                     "there is no table " + excerpt(key.str()) +
                             didYouMean(key.str(), known, "; there are " + joined(headings)));
        }
    }
}

}  // namespace

Settings readSettings(const std::string& path) {
    Settings settings;
    const std::optional<std::string> text = textIfThere(path, kMostSettingsBytes);
    if (!text) {
        return settings;
    }
    toml::table root;
    try {
        root = toml::parse(std::string_view(*text), std::string_view(path));
    } catch (const toml::parse_error& error) {
        refuseAt(path, error.source(), std::string(error.description()));
    }
    checkHeadings(path, root);
    forEachTable(path, root, "rule",
                 [&](const TomlTable& table) { settings.rules.push_back(readRule(table)); });
    forEachTable(path, root, "allow", [&](const TomlTable& table) {
        settings.allowances.push_back(readAllowance(table));
    });
    forEachTable(path, root, "key", [&](const TomlTable& table) { addKey(settings, table); });
    return settings;
}

}  // namespace mlk::tree
