#include "tools/mlktree/Help.h"

#include <algorithm>

#include "tools/common/Text.h"
#include "tools/common/Wrap.h"

namespace mlk::tree {

namespace {

constexpr size_t kColumn = 24;  // where the help of an option begins

// A name and its text: beside each other if the name is short enough, else below.
std::string entry(const std::string& name, std::string_view text, size_t column) {
    const std::string head = "  " + name;
    if (head.size() + 2 > column) {
        return head + "\n" + paragraph(std::string(column, ' '), text, column, kHelpWidth);
    }
    return paragraph(head + std::string(column - head.size(), ' '), text, column, kHelpWidth);
}

std::string optionsUnder(const std::string& title, const std::vector<Option>& options) {
    std::string text = "\n" + title + ":\n";
    for (const Option& option : options) {
        const std::string letter =
                option.letter != 0 ? std::string{'-', option.letter, ',', ' '} : "";
        std::string name = letter;
        name += option.name;
        if (!option.value.empty()) {
            name += ' ';
            name += option.value;
        }
        text += entry(name, helpTextOf(option), kColumn);
    }
    return text;
}

std::string statuses(const std::vector<std::pair<int, std::string_view>>& rows) {
    std::string text = "\nExit status:\n";
    for (const auto& [status, what] : rows) {
        text += entry(std::to_string(status), what, 5);
    }
    return text;
}

}  // namespace

std::string helpTextOf(const Option& option) {
    std::string more = joined({option.choices.begin(), option.choices.end()});
    if (!option.otherwise.empty()) {
        more += (more.empty() ? "default: " : "; default: ") + std::string(option.otherwise);
    }
    return std::string(option.help) + (more.empty() ? "" : " (" + more + ")");
}

const std::vector<Variable>& variables() {
    static const std::vector<Variable> kVariables = {
            {"MLK_ROOT", "the tree, if the command line names none; default: the current folder"},
            {"NO_COLOR", "if it has a value: no colours, unless --color asks for them"},
    };
    return kVariables;
}

std::vector<std::string_view> paragraphsOf(std::string_view text) {
    std::vector<std::string_view> paragraphs;
    while (!text.empty()) {
        const size_t end = text.find("\n\n");
        paragraphs.push_back(text.substr(0, end));
        text.remove_prefix(std::min(text.size(), end == std::string_view::npos ? end : end + 2));
    }
    return paragraphs;
}

std::string generalHelp() {
    std::string text =
            "mlktree - checks and explains the configuration of a line of televisions\n"
            "\n"
            "Usage: mlktree COMMAND [OPTION]... [WORD]...\n"
            "       mlktree COMMAND --help\n"
            "       mlktree --help | --version\n"
            "\n";
    text += paragraph(
            "",
            "Works on a partition tree: a folder with tvconfigs/, tvdata/ and impdata/. It needs "
            "no service, and reads files with the service's own readers. Only fix --write and new "
            "write to a tree.",
            0, kHelpWidth);
    text += "\nCommands:\n";
    for (const Command& command : commands()) {
        if (!command.isHidden) {
            text += entry(std::string(command.name), command.summary, 14);
        }
    }
    text += statuses({{0, "nothing found"},
                      {1, "findings at or above the threshold"},
                      {2, "the command line or the tree is wrong"}});
    text += "\nEnvironment:\n";
    for (const Variable& variable : variables()) {
        text += entry(std::string(variable.name), variable.what, 14);
    }
    return text +
           "\nExamples:\n  mlktree check samples/partitions\n  mlktree rules\n"
           "  . <(mlktree completion bash)\n";
}

std::string helpOf(const Command& command) {
    const std::string name(command.name);
    std::string text = "mlktree " + name + " - " + std::string(command.summary) + "\n\n";
    const char* lead = "Usage: ";
    for (const std::string_view words : command.words) {
        text.append(lead).append("mlktree ").append(name);
        text.append(command.groups.empty() ? "" : " [OPTION]...");
        text.append(words.empty() ? "" : " ").append(words).append("\n");
        lead = "       ";
    }
    for (const std::string_view part : paragraphsOf(command.description)) {
        text += paragraph("\n", part, 0, kHelpWidth);
    }
    for (const OptionGroup& group : command.groups) {
        text += optionsUnder(std::string(group.title), group.options);
    }
    text += optionsUnder("Help", {helpOption()});
    text += statuses(command.statuses);
    text += "\nExamples:\n";
    size_t longest = 0;
    for (const Example& example : command.examples) {
        longest = std::max(longest, example.line.size());
    }
    for (const Example& example : command.examples) {
        text += "  " + std::string(example.line) +
                std::string(longest + 2 - example.line.size(), ' ') + "# " +
                std::string(example.what) + "\n";
    }
    return text;
}

}  // namespace mlk::tree
