# Runs the fuzzers of a build. Sourced by ./test, with the tree as the working directory.

# run_fuzzer RUN SECONDS FOLDER: one fuzzer, by its .run file. What it learns stays in FOLDER/corpus,
# what it finds in FOLDER/findings, its output in FOLDER/logs. One line of the table to standard
# output; false when it found something.
run_fuzzer() {
    local name=${1##*/}
    name=${name%.run}
    local corpus=$3/corpus/$name findings=$3/findings/$name log=$3/logs/$name
    local command status=0
    read -ra command <"$1"
    mkdir -p "$corpus" "$findings" "${log%/*}"
    # New inputs go to the first folder, the others are only read.
    local seeds=()
    while [[ ${command[-1]} == /* && -d ${command[-1]} ]]; do
        seeds+=("${command[-1]}")
        unset 'command[-1]'
    done
    "${command[@]}" -max_total_time="$2" -timeout=20 -rss_limit_mb=4096 -malloc_limit_mb=1024 \
        -print_final_stats=1 -artifact_prefix="$findings/" "$corpus" "${seeds[@]}" \
        >"$log" 2>&1 || status=$?
    local executed added
    executed=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    added=$(sed -n 's/^stat::new_units_added: *//p' "$log")
    printf '%-16s %12s %9s  ' "$name" "${executed:--}" "${added:--}"
    if ((status == 0)); then
        echo nothing
        return 0
    fi
    local unit
    unit=$(sed -n 's/.*Test unit written to //p' "$log" | tail -n 1)
    echo "FOUND: ${command[0]#"$PWD"/} ${unit:-(no input)}; log $log"
    return 1
}
export -f run_fuzzer

# fuzz SECONDS FOLDER [NAME...]: all fuzzers of the build in that folder, or those named, for so long
# each and as many at once as there are processors. False when one found something.
fuzz() {
    local seconds=$1 folder=$2
    shift 2
    local runs=()
    local name
    for name in "$@"; do
        runs+=("$folder/fuzz/$name.run")
    done
    (($#)) || runs=("$folder"/fuzz/*.run)
    local status=0
    # A process that crashed leaves its files.
    local scratch
    scratch=$(mktemp -d -p /dev/shm) || return
    printf '%-16s %12s %9s  %s\n' fuzzer executions "new units" findings
    printf '%s\n' "${runs[@]}" |
        TMPDIR=$scratch xargs -P "$(nproc)" -I '{}' \
            bash -c "run_fuzzer '{}' $seconds $folder/fuzzing" || status=1
    rm -rf "$scratch"
    return "$status"
}
