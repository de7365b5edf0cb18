#include "tools/mlktree/SettingsTables.h"

#include <algorithm>

namespace mlk::tree {

namespace {

constexpr std::string_view kFiles =
        "Files that the table speaks of, as a pattern of paths relative to the tree. Default: all.";

SettingsTable ruleTable() {
    return {"rule",
            "Gives a rule another severity, or switches it off. Of several tables that fit a "
            "finding, the last one counts.",
            {
                    {"rule", "\"NAME\"", true,
                     "A rule of the catalogue that mlktree rules prints; \"*\" for all rules."},
                    {"files", "\"PATTERN\"", false, kFiles},
                    {"severity", "\"SEVERITY\"", true,
                     "One of \"off\", \"note\", \"warning\", \"error\"."},
                    {"reason", "\"TEXT\"", false, "Why. Required if the severity is \"off\"."},
            },
            "[[rule]]\n"
            "rule = \"unused-plan\"\n"
            "files = \"tvconfigs/freqtables/**\"\n"
            "severity = \"off\"\n"
            "reason = \"all lines share this folder\"\n"};
}

SettingsTable allowTable() {
    return {"allow",
            "Allows findings in files that can hold no comment, such as lists of countries. In "
            "other files, the comment \"mlktree: allow RULE REASON\" above the line does the same.",
            {
                    {"rule", "\"NAME\"", true, "A rule of the catalogue."},
                    {"files", "\"PATTERN\"", false, kFiles},
                    {"text", "\"TEXT\"", false,
                     "The line of the finding, without blanks at its ends. Default: any line."},
                    {"reason", "\"TEXT\"", true, "Why the finding is right as it is."},
            },
            "[[allow]]\n"
            "rule = \"repeated-country\"\n"
            "files = \"tvconfigs/country/*.txt\"\n"
            "text = \"GERMANY,DE\"\n"
            "reason = \"the menu shows it first and in its place\"\n"};
}

SettingsTable keyTable() {
    return {"key",
            "Declares items of model and board files that the service does not know and the line's "
            "own programs read. check then holds their values against the type, and explain shows "
            "the remark.",
            {
                    {"section", "\"SECTION\"", true,
                     "With or without its brackets. \"*\" stands for any text, \"?\" for any "
                     "character."},
                    {"key", "\"KEY\"", true,
                     "With the same wildcards. Of several tables that fit, one without wildcards "
                     "counts, else the first."},
                    {"type", "\"TYPE\"", false,
                     "One of \"text\" (the default), \"path\", \"boolean\" (\"true\" or "
                     "\"false\"), \"integer\" (decimal), \"choice\", \"pattern\"."},
                    {"least", "N", false, "Of an integer: the least value."},
                    {"most", "N", false, "Of an integer: the greatest value."},
                    {"choices", "[\"TEXT\", ...]", false,
                     "Of a choice, and required there: the values that are allowed."},
                    {"pattern", "\"REGEX\"", false,
                     "Of a pattern, and required there: a regular expression of ECMAScript that "
                     "the whole value matches."},
                    {"required", "true or false", false,
                     "Whether every model has the item. Default: false."},
                    {"remark", "\"TEXT\"", false, "What explain shows beside the value."},
            },
            "[[key]]\n"
            "section = \"[NETWORK]\"\n"
            "key = \"NET_CONNECT_TIMEOUT\"\n"
            "type = \"integer\"\n"
            "least = 1\n"
            "most = 120\n"
            "required = true\n"
            "remark = \"seconds\"\n"};
}

}  // namespace

std::vector<std::string_view> SettingsTable::keyNames() const {
    std::vector<std::string_view> names;
    for (const SettingsKey& key : keys) {
        names.push_back(key.name);
    }
    return names;
}

const std::vector<SettingsTable>& settingsTables() {
    static const std::vector<SettingsTable> kTables = {ruleTable(), allowTable(), keyTable()};
    return kTables;
}

const SettingsTable& settingsTable(std::string_view name) {
    return *std::find_if(settingsTables().begin(), settingsTables().end(),
                         [&](const SettingsTable& table) { return table.name == name; });
}

std::vector<std::string_view> settingsRemarks() {
    return {"The file lies at the top of the tree, beside tvconfigs/. It is read by every command "
            "that works on a tree. A mistake in it ends the command with status 2 and names file, "
            "line and column.",
            "In a pattern of paths, \"*\" stands for any characters of one folder or file name, "
            "\"?\" for one of them, and \"**\" for any number of folders. A pattern without \"/\" "
            "fits "
            "the file name in any folder.",
            "A table that allows nothing any more is a finding itself, of the rule unused-allow."};
}

}  // namespace mlk::tree
