#!/usr/bin/env bash
# Checks the sources against .clang-format and the limit on lines, and the syntax of shell scripts.
set -u
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
status=0
mapfile -t sources < <(git ls-files -- '*.cpp' '*.h')
if ((${#sources[@]})); then
    clang-format --dry-run -Werror "${sources[@]}" || status=1
fi
while read -r lines file; do
    [[ $file == total ]] && continue
    if ((lines > 400)); then
        echo "$file: $lines lines; a file has one job and at most 400" >&2
        status=1
    fi
done < <(git ls-files -z -- '*.cpp' '*.h' '*.py' | xargs -0 wc -l)
for script in run test .ci/run tools/*.sh; do
    bash -n "$script" || status=1
done
exit $status
