#include "tools/mlkctl/BashCompletion.h"

#include <CLI/CLI.hpp>

#include "tools/mlkctl/Interface.h"
#include "tools/mlkctl/Verb.h"

namespace mlk::ctl {

namespace {

// The part of the script that depends on no table. COMP_WORDS[0] is mlkctl itself. Options may
// stand between "call" and the interface, so the script collects the other words.
constexpr const char* kFunctions = R"bash(
_mlkctl_offer() {
    local IFS=$' \t\n'
    COMPREPLY=($(compgen -W "$1" -- "${COMP_WORDS[COMP_CWORD]}"))
}

_mlkctl_offer_files() {
    local IFS=$'\n'
    compopt -o filenames 2>/dev/null
    COMPREPLY=($(compgen -f -- "${COMP_WORDS[COMP_CWORD]}"))
}

_mlkctl_call() {
    local -a words=()
    local i
    for ((i = 2; i < COMP_CWORD; ++i)); do
        [[ ${#words[@]} -eq 0 && ${COMP_WORDS[i]} == -* ]] || words+=("${COMP_WORDS[i]}")
    done
    case ${#words[@]} in
        0) _mlkctl_offer "$_mlkctl_interfaces --raw --timeout --help" ;;
        1) _mlkctl_offer "$(_mlkctl_methods "${words[0]}") --help" ;;
        *) _mlkctl_argument "${words[0]} ${words[1]} $((${#words[@]} - 1))" ;;
    esac
}

_mlkctl_prop() {
    case $COMP_CWORD:${COMP_WORDS[2]} in
        2:*) _mlkctl_offer "list get set --help" ;;
        3:list) _mlkctl_offer "--json" ;;
        3:get | 3:set)
            _mlkctl_offer "$("${COMP_WORDS[0]}" prop list 2>/dev/null | cut -d= -f1)" ;;
    esac
}

_mlkctl() {
    COMPREPLY=()
    if [[ $COMP_CWORD -eq 1 ]]; then
        _mlkctl_offer "$_mlkctl_commands --help --version"
        return
    fi
    case ${COMP_WORDS[1]} in
        call) _mlkctl_call ;;
        prop) _mlkctl_prop ;;
        completion) _mlkctl_offer "bash --help" ;;
        *) _mlkctl_offer "$(_mlkctl_options "${COMP_WORDS[1]}")" ;;
    esac
}

complete -F _mlkctl mlkctl
)bash";

std::string wordsOf(const std::vector<std::string_view>& words) {
    std::string text;
    for (const std::string_view word : words) {
        text += (text.empty() ? "" : " ") + std::string(word);
    }
    return text;
}

std::string optionsOf(Verb& verb) {
    CLI::App app;
    verb.addOptions(app);
    std::string text;
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            text += (text.empty() ? "--" : " --") + name;
        }
    }
    return text;
}

// The script's command that completes a word of a call; empty if the values are not known.
std::string completionOf(const Word& word) {
    if (word.kind == Word::Kind::FLAG) {
        return "_mlkctl_offer 'true false'";
    }
    if (word.kind == Word::Kind::TEXT) {
        return word.name == "PATH" ? "_mlkctl_offer_files" : "";
    }
    std::vector<std::string_view> names;
    for (const auto& row : word.names.rows) {
        names.emplace_back(row.first);
    }
    return names.empty() ? "" : "_mlkctl_offer '" + wordsOf(names) + "'";
}

// One case for each word of a method that can be completed.
std::string argumentCases() {
    std::string text;
    for (const Interface* interface : interfaces()) {
        for (const Method& method : interface->methods) {
            for (size_t i = 0; i < method.call.words.size(); ++i) {
                const std::string command = completionOf(method.call.words[i]);
                if (command.empty()) {
                    continue;
                }
                text += "        '" + std::string(interface->name) + ' ' +
                        std::string(method.name) + ' ' + std::to_string(i + 1) + "') " + command +
                        " ;;\n";
            }
        }
    }
    return text;
}

std::string function(const std::string& name, const std::string& cases) {
    return "\n_mlkctl_" + name + "() {\n    case $1 in\n" + cases + "    esac\n}\n";
}

}  // namespace

std::string bashCompletion() {
    std::vector<std::string_view> commands;
    std::vector<std::string_view> names;
    std::string options;
    std::string methods;
    const auto verbs = makeVerbs();
    for (const auto& verb : verbs) {
        commands.push_back(verb->name());
        options +=
                "        " + std::string(verb->name()) + ") echo '" + optionsOf(*verb) + "' ;;\n";
    }
    for (const Interface* interface : interfaces()) {
        names.push_back(interface->name);
        methods += "        " + std::string(interface->name) + ") echo '" +
                   wordsOf(interface->methodNames()) + "' ;;\n";
    }
    return "# bash completion for mlkctl\n\n_mlkctl_commands='" + wordsOf(commands) +
           "'\n_mlkctl_interfaces='" + wordsOf(names) + "'\n" + function("options", options) +
           function("methods", methods) + function("argument", argumentCases()) + kFunctions;
}

}  // namespace mlk::ctl
