# Runs the tests and prints how much of the code they cover. Sourced by ./test, with the tree as the
# working directory.

# coverage FOLDER ARGUMENT...: runs the suite of the coverage preset, which is built in FOLDER, and
# prints the table. The arguments are those of tools/coverage.py. Fails if a test failed.
coverage() {
    local folder=$PWD/$1
    shift
    local profiles=$folder/profiles status=0
    rm -rf "$profiles"
    # Each program has one file, to which all its processes add while they run (%c): a process that
    # is killed counts as well. Some tests run programs as other users.
    mkdir -p -m 1777 "$profiles"
    LLVM_PROFILE_FILE="$profiles/%m%c.profraw" \
        ctest --preset coverage -j "$(($(nproc) * 2))" >"$folder/tests.log" 2>&1 || status=1
    tail -n 15 "$folder/tests.log" >&2
    llvm-profdata merge -sparse "$profiles"/*.profraw -o "$folder/all.profdata" || return
    local programs=()
    mapfile -t programs < <(find "$folder"/{bin,tests,fuzz} -maxdepth 1 -type f -executable)
    local objects=()
    local program
    for program in "${programs[@]:1}"; do
        objects+=(-object "$program")
    done
    # It warns about inline functions that a program contains and never uses; the counts come from
    # another program.
    llvm-cov export -instr-profile="$folder/all.profdata" -skip-functions \
        -ignore-filename-regex='^/usr/' \
        "${programs[0]}" "${objects[@]}" \
        >"$folder/coverage.json" 2>"$folder/coverage.log" || return
    tools/coverage.py "$folder/coverage.json" "$@" || return
    return "$status"
}
