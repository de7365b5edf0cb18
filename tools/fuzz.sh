# Runs the fuzzers of a build. Sourced by ./test, with the tree as the working directory.

# run_fuzzer RUN SECONDS FOLDER: runs one fuzzer, named by its .run file. New inputs stay in
# FOLDER/corpus, findings in FOLDER/findings, the output in FOLDER/logs. Prints one line of the table;
# fails if the fuzzer found something.
run_fuzzer() {
    local name=${1##*/}
    name=${name%.run}
    local corpus=$3/corpus/$name findings=$3/findings/$name log=$3/logs/$name
    local command status=0
    read -ra command <"$1"
    mkdir -p "$corpus" "$findings" "${log%/*}"
    # libFuzzer writes new inputs to the first folder and only reads the others.
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

# fuzz SECONDS FOLDER [NAME...]: runs all fuzzers of the build in FOLDER, or those named, for SECONDS
# each, as many at once as there are processors. Fails if one found something.
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
    # A process that crashes leaves its temporary files here.
    local scratch
    scratch=$(mktemp -d -p /dev/shm) || return
    printf '%-16s %12s %9s  %s\n' fuzzer executions "new units" findings
    printf '%s\n' "${runs[@]}" |
        TMPDIR=$scratch xargs -P "$(nproc)" -I '{}' \
            bash -c "run_fuzzer '{}' $seconds $folder/fuzzing" || status=1
    rm -rf "$scratch"
    return "$status"
}
