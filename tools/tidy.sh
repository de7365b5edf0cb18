#!/usr/bin/env bash
# Runs clang-tidy with the checks of .clang-tidy: tools/tidy.sh [--changed | FOLDER...]
#
#   --changed   sources changed since origin/main, or since the last tag if there is no origin/main
#   FOLDER...   all sources of these folders; without a folder, those of the whole tree
#
# The default preset has to be built: it tells how each source is compiled, and holds the generated
# headers. Tests, benchmarks and fuzzers are left out: their frameworks' macros break the checks.
set -u
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
commands=build/default/compile_commands.json

# Keeps the sources that are checked at all, of names on standard input.
checked() {
    grep -E '\.(cpp|h)$' | grep -vE '(^|/)(tests|testing|bench|fuzz|mutants)/'
}

# Prints the sources to compile for the files on standard input: a source stands for itself, a header
# for the first source of its folder that includes it. What CMake does not compile is left out.
compiled() {
    local file
    while read -r file; do
        if [[ $file == *.h ]]; then
            file=$(git grep -lE "#include [<\"]([a-z./]*/)?${file##*/}[>\"]" -- "${file%%/*}/*.cpp" |
                checked | head -n 1)
        fi
        [[ -n $file ]] && grep -qF "\"file\": \"$PWD/$file\"" "$commands" && echo "$file"
    done | sort -u
}

if [[ ! -f $commands ]]; then
    echo "tidy: build the default preset first" >&2
    exit 1
fi
if [[ ${1-} == --changed ]]; then
    base=$(git rev-parse -q --verify origin/main) || base=$(git describe --tags --abbrev=0 2>/dev/null) || {
        echo "tidy: neither origin/main nor a tag to compare with; skipped" >&2
        exit 0
    }
    base=$(git merge-base HEAD "$base") || exit 1
    mapfile -t sources < <({
        git diff --name-only --diff-filter=d "$base"
        git ls-files --others --exclude-standard
    } | checked | compiled)
else
    mapfile -t sources < <(git ls-files -- "${@:-.}" | grep '\.cpp$' | checked | compiled)
    if ((${#sources[@]} == 0)); then
        echo "tidy: no sources in $*" >&2
        exit 2
    fi
fi
((${#sources[@]})) || exit 0
echo "Checking ${#sources[@]} sources with clang-tidy" >&2
# clang-tidy prints findings to standard output. To standard error it prints how many warnings of
# other headers it does not show, and its own failures.
log=$(mktemp) || exit 1
trap 'rm -f "$log"' EXIT
# Prints what clang-tidy finds in one source and in the headers of its folder.
check() {
    local folder=${1%%/*}
    clang-tidy -p build/default --quiet --header-filter="^$PWD/$folder/.*\\.h\$" "$1"
}
export -f check
# A header is checked with each source that includes it: each finding is printed once.
printf '%s\n' "${sources[@]}" |
    xargs -P "$(nproc)" -I '{}' bash -c "check '{}'" 2>"$log" | awk '
        /^\/.*: (warning|error|note): / { skip = seen[$0]++ }
        !skip'
status=${PIPESTATUS[1]}
((status == 0)) || grep -v 'warnings\? \(generated\|treated as error\)' "$log" >&2
exit $((status != 0))
