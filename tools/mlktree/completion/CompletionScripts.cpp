#include "tools/mlktree/completion/CompletionScripts.h"

namespace mlk::tree {

namespace {

// Each script hands the words of the command line to `mlktree complete`, which knows the rest.
// A line ":files" or ":folders" asks the shell for its own.

// Words keep the quotes that the user typed. The one that is being typed may have an open quote:
// then bash quotes the rest, else the script does.
constexpr std::string_view kBash = R"bash(# bash completion for mlktree

_mlktree() {
    local IFS=$'\n' typed=${COMP_WORDS[COMP_CWORD]} current line offered word last= begun=
    local -a words=()
    # "=" is a word of its own to bash, and to mlktree part of the option or of the set.
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        word=${word//[\'\"\\]/}
        if [[ ($word == = || $last == =) && ${#words[@]} -gt 0 && ${words[-1]} != -* ]]; then
            words[-1]+=$word
        else
            words+=("$word")
        fi
        last=$word
    done
    if [[ ($typed == = || $last == =) && ${#words[@]} -gt 0 && ${words[-1]} != [-=]* ]]; then
        begun=${words[-1]%=}=
        unset 'words[-1]'
    fi
    if [[ $typed == = ]]; then
        typed=
    fi
    current=${typed//[\'\"\\]/}
    COMPREPLY=()
    offered=$("${COMP_WORDS[0]}" complete -- "${words[@]}" "$begun$current" 2>/dev/null) || return
    for line in $offered; do
        if [[ $line == *=$'\t'* ]]; then
            compopt -o nospace 2>/dev/null
        fi
        line=${line#"$begun"}
        case $line in
            :files)
                compopt -o filenames 2>/dev/null
                COMPREPLY+=($(compgen -f -- "$current"))
                ;;
            :folders)
                compopt -o filenames 2>/dev/null
                COMPREPLY+=($(compgen -d -- "$current"))
                ;;
            *)
                line=${line%%$'\t'*}
                [[ $typed == [\'\"]* ]] || printf -v line %q "$line"
                COMPREPLY+=("$line")
                ;;
        esac
    done
}

complete -F _mlktree mlktree
)bash";

constexpr std::string_view kZsh = R"zsh(#compdef mlktree

_mlktree() {
    local line
    local -a offered words_only described
    offered=("${(@f)$("${words[1]}" complete -- "${(@)words[2,CURRENT]//[\'\"\\]/}" 2>/dev/null)}")
    for line in "${offered[@]}"; do
        case $line in
            '') ;;
            :files) _files ;;
            :folders) _files -/ ;;
            *)
                words_only+=("${line%%$'\t'*}")
                described+=("${line/$'\t'/  -- }")
                ;;
        esac
    done
    ((${#words_only})) && compadd -l -d described -a words_only
}

if [[ $funcstack[1] == _mlktree ]]; then
    _mlktree "$@"
else
    compdef _mlktree mlktree
fi
)zsh";

constexpr std::string_view kFish = R"fish(# fish completion for mlktree

function __mlktree_complete
    set -l words (commandline -opc)
    set -l current (commandline -ct | string replace -ra '[\'"\\\\]' '')
    for line in ($words[1] complete -- $words[2..-1] "$current" 2>/dev/null)
        switch $line
            case ':files'
                __fish_complete_path "$current"
            case ':folders'
                __fish_complete_directories "$current" ''
            case '*'
                echo $line
        end
    end
end

complete -c mlktree -f -a '(__mlktree_complete)'
)fish";

}  // namespace

const std::vector<ShellScript>& completionScripts() {
    static const std::vector<ShellScript> kScripts = {
            {"bash", kBash}, {"zsh", kZsh}, {"fish", kFish}};
    return kScripts;
}

}  // namespace mlk::tree
