#include "tools/mlktree/CommonOptions.h"

namespace mlk::tree {

const OptionGroup& treeOptions() {
    static const OptionGroup kGroup = {
            "Which tree",
            {
                    {"--tree", 0, "DIR",
                     "the folder with tvconfigs/, tvdata/ and impdata/, for a command line where "
                     "a word could be either a folder or something else",
                     Completion::FOLDER},
                    {"--tvconfigs", 0, "DIR", "the folder of that partition, if it lies elsewhere",
                     Completion::FOLDER},
                    {"--tvdata", 0, "DIR", "the same for tvdata", Completion::FOLDER},
                    {"--impdata", 0, "DIR", "the same for impdata", Completion::FOLDER},
                    {"--prop",
                     0,
                     "KEY=VALUE",
                     "a system property, in place of the one in data/property; may be repeated",
                     Completion::PROPERTY,
                     {},
                     "",
                     true},
            }};
    return kGroup;
}

const OptionGroup& setOptions() {
    static const OptionGroup kGroup = {
            "Which sets",
            {
                    {"--model", 0, "N", "the model with this index", Completion::MODEL},
                    {"--board", 0, "FILE", "the set with this board file; \"none\" for no board",
                     Completion::BOARD},
                    {"--customer",
                     0,
                     "FILE",
                     "the models of this customer file; may be repeated",
                     Completion::CUSTOMER,
                     {},
                     "",
                     true},
                    {"--country", 0, "NAME", "the set in this country", Completion::COUNTRY},
            }};
    return kGroup;
}

Option formatOption(std::vector<std::string_view> choices) {
    Option option = {"--format", 0, "FORMAT", "how to print", Completion::CHOICE};
    option.otherwise = choices.front();
    option.choices = std::move(choices);
    return option;
}

Option outputOption(std::string_view what) {
    return {"--output", 'o', "FILE", what, Completion::FILE, {}, "-"};
}

Option colorOption() {
    return {"--color",
            0,
            "WHEN",
            "whether to print colours; auto: on a terminal, unless NO_COLOR is set",
            Completion::CHOICE,
            {"auto", "always", "never"},
            "auto"};
}

bool isColoured(const Arguments& arguments, const Environment& environment, bool isTerminal) {
    const std::string when = arguments.value("--color", "auto");
    return when == "auto" ? isTerminal && !environment.noColor : when == "always";
}

std::vector<Completion> treeWord(const std::vector<std::string>& before) {
    return before.empty() ? std::vector<Completion>{Completion::FOLDER} : std::vector<Completion>();
}

std::vector<std::pair<int, std::string_view>> statusesOf(std::string_view nothing,
                                                         std::string_view found) {
    return {{0, nothing},
            {1, found},
            {2,
             "the command line or the tree is wrong, or a file cannot be written; the message "
             "says what would be right"}};
}

}  // namespace mlk::tree
