#!/usr/bin/env bash
# Makes inputs for the fuzzers from the sample product line: fuzz-seeds.sh PARTITIONS TO writes them
# to TO/<fuzzer>/. A line "--8<--" separates the files of an input. The files name each other by the
# paths at which the fuzzer puts them.
set -eu
partitions=$1
to=$2
tvconfigs=$partitions/tvconfigs

# join FILE...: prints the files as one input. "-" is standard input.
join() {
    local first=1
    local file
    for file in "$@"; do
        ((first)) || printf '\n--8<--\n'
        first=0
        cat "$file"
    done
}

for fuzzer in project_chain auxiliary_ini tv_config list_files freq_map freq_table tv_system \
    properties partition_tree partition_answers; do
    mkdir -p "$to/$fuzzer"
    find "$to/$fuzzer" -type f -delete
done
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT

# Every model, in pieces of 30 lines: longer inputs would slow the fuzzer down. Every board.
customer=$work/customer
sed 's|/tvconfigs/system/[^"]*|/tvconfigs/sys.ini|' "$tvconfigs/customer.ini" >"$customer"
index=0
for model in "$tvconfigs"/model/*.ini; do
    index=$((index + 1))
    sed "s|\(Model_$index *= *\"\)[^\"]*|\1/tvconfigs/a.ini|" "$tvconfigs"/system/*.ini >"$work/sys"
    printf 'PROJECT_ID=%d\n' "$index" >"$work/project_id"
    sed 's|=.*|=/tvconfigs/b.ini|' "$partitions/impdata/board_id.bin" >"$work/board_id"
    boards=("$tvconfigs"/board/*.ini)
    rm -f "$work"/part.*
    grep -v '^#' "$model" | split -l 30 - "$work/part."
    for part in "$work"/part.*; do
        join "$work/project_id" "$work/board_id" "$customer" "$work/sys" "$part" \
            "${boards[index % ${#boards[@]}]}" >"$to/project_chain/${model##*/}.${part##*.}"
    done
done

for file in "$tvconfigs"/{audio,karaoke,keys,ddcci}/*.ini; do
    cp "$file" "$to/auxiliary_ini/${file##*/}"
done

# The file, and what a client sets: the second key of the file, and a key that the file lacks.
for file in "$tvconfigs"/tv.config "$tvconfigs"/tv/*.config; do
    grep '^[^#].*=' "$file" | sed -n '2{s/=.*/=false/;p};3{s/=.*/x=1/;p}' >"$work/sets"
    join "$file" "$work/sets" >"$to/tv_config/${file##*/}"
done

for file in "$tvconfigs"/{country,language}/*.txt; do
    cp "$file" "$to/list_files/${file##*/}"
done

# Eight countries in each input.
awk -v to="$to/freq_map/" '{ print > (to int(blocks / 8) ".xml") } /<\/COUNTRY_FREQ_MAP>/ { blocks++ }' \
    "$tvconfigs/freqtables/country_freq_map.xml"
for file in "$tvconfigs"/freqtables/{atv,dtv}/*; do
    head -n 30 "$file" >"$to/freq_table/${file##*/}"
done

for region in uk cn na latam; do
    sed "s|/tvconfigs/tvsysmap/countries_$region.xml|/tvconfigs/countries.xml|" \
        "$tvconfigs/tvsysmap/tvsys_$region.xml" >"$work/systems"
    printf 'COUNTRY_ID=43\n' >"$work/country_id"
    join "$work/systems" "$tvconfigs/tvsysmap/countries_$region.xml" "$work/country_id" \
        >"$to/tv_system/$region"
done

for file in "$partitions"/data/property/*; do
    cp "$file" "$to/properties/${file##*/}"
done

# Each tree that breaks a rule of mlktree, as the files that are laid over its sound tree. A file that
# is removed has no second line.
for tree in "$(dirname "$0")"/mlktree/tests/rules/*/bad; do
    rule=${tree%/bad}
    (
        cd "$tree"
        find . -type f ! -name removed -size -64k -printf '%P\n' | sort | while read -r file; do
            printf '%s\n' "$file"
            cat "$file"
            printf '\n--8<--\n'
        done
        [[ ! -e removed ]] || sed 's/$/\n--8<--/' removed
    ) >"$to/partition_tree/${rule##*/}"
done
cp "$to"/partition_tree/* "$to/partition_answers/"
