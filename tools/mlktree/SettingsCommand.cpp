#include "tools/common/Json.h"
#include "tools/common/Text.h"
#include "tools/common/Wrap.h"
#include "tools/mlktree/CommonOptions.h"
#include "tools/mlktree/Help.h"
#include "tools/mlktree/SettingsTables.h"

namespace mlk::tree {

namespace {

constexpr size_t kColumn = 26;  // where the text of a key begins

std::string indented(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        const size_t end = text.find('\n') + 1;
        out += "    " + std::string(text.substr(0, end));
        text.remove_prefix(end);
    }
    return out;
}

std::string textOf(const SettingsTable& table) {
    const std::string heading = "[[" + std::string(table.name) + "]]";
    std::string text = heading + "\n\n" + paragraph("  ", table.what, 2, kHelpWidth) + "\n";
    for (const SettingsKey& key : table.keys) {
        const std::string head = "  " + std::string(key.name) + " = " + std::string(key.value);
        const std::string what = (key.isRequired ? "Required. " : "") + std::string(key.what);
        const bool isShort = head.size() + 2 <= kColumn;
        text += isShort ? "" : head + "\n";
        text += paragraph(isShort ? head + std::string(kColumn - head.size(), ' ')
                                  : std::string(kColumn, ' '),
                          what, kColumn, kHelpWidth);
    }
    return text + "\n  Example:\n\n" + indented(table.example);
}

std::string textOfAll() {
    std::string text = "mlktree.toml - settings of mlktree for one tree\n";
    for (const std::string_view remark : settingsRemarks()) {
        text += "\n" + paragraph("", remark, 0, kHelpWidth);
    }
    for (const SettingsTable& table : settingsTables()) {
        text += "\n" + textOf(table);
    }
    return text;
}

std::string jsonOf(const SettingsKey& key) {
    return JsonObject()
            .text("name", key.name)
            .text("value", key.value)
            .flag("required", key.isRequired)
            .text("what", key.what)
            .str();
}

std::string jsonOfAll() {
    std::string remarks;
    for (const std::string_view remark : settingsRemarks()) {
        remarks += (remarks.empty() ? "" : ",\n ") + jsonString(remark);
    }
    std::string tables;
    for (const SettingsTable& table : settingsTables()) {
        std::string keys;
        for (const SettingsKey& key : table.keys) {
            keys += (keys.empty() ? "\n  " : ",\n  ") + jsonOf(key);
        }
        tables += (tables.empty() ? "\n " : ",\n ") + std::string("{\"name\":") +
                  jsonString(table.name) + ",\"what\":" + jsonString(table.what) + ",\"keys\":[" +
                  keys + "],\n  \"example\":" + jsonString(table.example) + "}";
    }
    return "{\"remarks\":[" + remarks + "],\n\"tables\":[" + tables + "]}\n";
}

ExitStatus run(const Arguments& arguments, Environment& environment) {
    environment.output.write(arguments.value("--format") == "json" ? jsonOfAll() : textOfAll());
    return ExitStatus::NOTHING_FOUND;
}

}  // namespace

Command settingsCommand() {
    Command command;
    command.name = "settings";
    command.words = {""};
    command.summary = "tells what mlktree.toml may hold";
    command.description =
            "mlktree.toml at the top of a tree changes severities of rules, allows findings, and "
            "declares the line's own keys. The command prints its tables and their keys, with an "
            "example of each.";
    command.groups = {{"Options", {formatOption({"text", "json"})}}};
    command.statuses = {{0, "done"}, {2, "the command line is wrong"}};
    command.examples = {
            {"mlktree settings", "all tables"},
            {"mlktree settings --format json | jq -r '.tables[].name'", "for a program"},
    };
    command.run = run;
    return command;
}

}  // namespace mlk::tree
