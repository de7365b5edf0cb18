#include "tools/mlkctl/CompletionScripts.h"

namespace mlk::ctl {

namespace {

// Words keep the quotes that the user typed. The one that is being typed may have an open quote:
// then bash quotes the rest, else the script does.
constexpr std::string_view kBash = R"script(# bash completion for mlkctl

_mlkctl() {
    local word text
    local -a words=()
    for word in "${COMP_WORDS[@]:1:COMP_CWORD}"; do
        words+=("${word//[\'\"\\]/}")
    done
    COMPREPLY=()
    while IFS=$'\t' read -r word text; do
        [[ ${COMP_WORDS[COMP_CWORD]} == [\'\"]* ]] || printf -v word %q "$word"
        COMPREPLY+=("$word")
    done < <("${COMP_WORDS[0]}" complete -- "${words[@]}" 2>/dev/null)
    if [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == */ ]]; then
        compopt -o nospace 2>/dev/null
    fi
}

complete -F _mlkctl mlkctl
)script";

// The candidates are complete, and some do not begin with the word: -U takes them as they are.
constexpr std::string_view kZsh = R"script(#compdef mlkctl
# zsh completion for mlkctl

_mlkctl() {
    local line value text
    local -a values shown folders
    while IFS= read -r line; do
        value=${line%%$'\t'*}
        text=${line#*$'\t'}
        if [[ $value == */ ]]; then
            folders+=("$value")
        else
            values+=("$value")
            shown+=("$value${text:+  -- $text}")
        fi
    done < <("${(Q)words[1]}" complete -- "${(@)words[2,CURRENT]//[\'\"\\]/}" 2>/dev/null)
    (( ${#folders} )) && compadd -U -S '' -a folders
    (( ${#values} )) && compadd -U -l -d shown -a values
    (( ${#folders} + ${#values} ))
}

if [[ ${funcstack[1]} == _mlkctl ]]; then
    _mlkctl "$@"
else
    compdef _mlkctl mlkctl
fi
)script";

constexpr std::string_view kFish = R"script(# fish completion for mlkctl

function __mlkctl_candidates
    set -l words (commandline -opc)
    set -l current (commandline -ct | string replace -ra '[\'"\\\\]' '')
    command $words[1] complete -- $words[2..-1] "$current" 2>/dev/null
end

complete -c mlkctl -f -a '(__mlkctl_candidates)'
)script";

}  // namespace

const std::vector<CompletionScript>& completionScripts() {
    static const std::vector<CompletionScript> scripts = {
            {"bash", kBash}, {"zsh", kZsh}, {"fish", kFish}};
    return scripts;
}

}  // namespace mlk::ctl
