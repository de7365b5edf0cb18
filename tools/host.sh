# What ./run and ./test share: the packages they need, building a preset, and the sets and logs of
# ./run. Sourced by bash, with the tree as the working directory. Only the caller writes to standard
# output.

# say MESSAGE: a line on standard error, after the name of the command.
say() {
    echo "${0##*/}: $1" >&2
}

# print_help: the comment at the beginning of the script that calls it.
print_help() {
    sed -n '2,/^set /{/^set /d;s/^# \{0,1\}//;p}' "${BASH_SOURCE[1]##*/}"
}

packages=(
    android-libbase-dev android-libcutils-dev android-liblog-dev android-libutils-dev
    cmake g++ hidl-gen libcli11-dev libgmock-dev libgtest-dev libtinyxml2-dev
    libtomlplusplus-dev ninja-build nlohmann-json3-dev python3 python3-jsonschema zlib1g-dev
)
# For the sanitizers' and the fuzzers' presets, and for the checks of form.
clang_packages=(clang clang-format clang-tidy libclang-rt-14-dev lld)
# For the tests of mlkctl's completion.
shell_packages=(fish zsh)
# For ./test --coverage: llvm-cov and llvm-profdata.
coverage_packages=(llvm)
# For tests/device: scripts, module definitions, policy.
device_packages=(blueprint-tools checkpolicy m4)
# For tests/commands: manual pages, Debian packages, and what examples pipe their output to.
package_packages=(dpkg-dev file groff-base jq less)
# For the tests of the page of mlktree report: a browser, and what drives it.
browser_packages=(chromium chromium-driver python3-selenium)
# For ./run bench.
bench_packages=(
    libbenchmark-dev
    # The peers.
    capnproto dbus-daemon libboost-dev libcapnp-dev libglib2.0-dev libgrpc++-dev libinih-dev
    libprotobuf-dev libsimpleini-dev libsystemd-dev pkgconf protobuf-compiler-grpc
)

# need PACKAGE...: installs those packages that are missing.
need() {
    local missing=()
    local package
    for package in "$@"; do
        [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) == installed ]] ||
            missing+=("$package")
    done
    ((${#missing[@]})) || return 0
    local as_root=()
    if ((EUID != 0)); then
        command -v sudo >/dev/null || {
            echo "Missing packages, and neither root nor sudo: ${missing[*]}" >&2
            return 1
        }
        as_root=(sudo)
    fi
    echo "Installing ${missing[*]}" >&2
    "${as_root[@]}" apt-get update -qq >&2 &&
        "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y --no-install-recommends "${missing[@]}" >&2
}

# can_build PRESET: fails with a message unless this user may write what a build of it writes.
can_build() {
    local folder=build/$1
    local path
    # The first thing that another user has left; a preset that was never built has its parent's.
    while [[ ! -e $folder && $folder != . ]]; do
        folder=$(dirname "$folder")
    done
    if [[ -d $folder && $folder == build/* ]]; then
        path=$(find "$folder" -maxdepth 2 \( -type d -o -name '.ninja_*' -o -name CMakeCache.txt \) \
            ! -writable -print -quit 2>/dev/null)
    elif [[ ! -w $folder ]]; then
        path=$folder
    fi
    [[ -z ${path-} ]] && return
    [[ $path == . ]] && path=$PWD
    say "$(id -un 2>/dev/null || id -u) cannot build here: $path belongs to $(stat -c %U "$path");\
 build as that user, or in a copy of the tree without build/"
    return 1
}

# memory_folder: makes a folder in memory in which every user may write, and prints its path. Fails if
# this machine has too little memory for that or starts no programs from there.
memory_folder() {
    local kind free options folder
    read -r kind free options < <(findmnt -bno FSTYPE,AVAIL,OPTIONS -T /dev/shm 2>/dev/null)
    [[ $kind == tmpfs && $options != *noexec* ]] && ((free >= 1 << 30)) || return
    folder=$(mktemp -d /dev/shm/mlk-test.XXXXXX 2>/dev/null) && chmod 1777 "$folder" && echo "$folder"
}

# build PRESET [TARGET...]: configures the preset unless that is done, and builds.
build() {
    local preset=$1
    shift
    can_build "$preset" || return
    local targets=()
    (($#)) && targets=(--target "$@")
    if [[ ! -f build/$preset/build.ninja ]]; then
        cmake --preset "$preset" >&2 || return
    fi
    cmake --build "build/$preset" "${targets[@]}" >&2
}

# copy_set FROM TO: copies the partitions and the property store, with what their links lead to, so
# that no write to the copy reaches the set, and the settings of mlktree. A link that leads nowhere is
# left out.
copy_set() {
    local part errors
    for part in tvconfigs tvdata impdata data/property; do
        [[ -d $1/$part ]] || continue
        mkdir -p "$2/$part" || return
        errors=$(LC_ALL=C cp -RL -- "$1/$part/." "$2/$part" 2>&1) && continue
        errors=$(grep -v "^cp: cannot stat '.*': No such file or directory\$" <<<"$errors") || continue
        printf '%s\n' "$errors" >&2
        return 1
    done
    if [[ -f $1/mlktree.toml ]]; then
        cp -L -- "$1/mlktree.toml" "$2" || return
    fi
    chmod -R u+rwX "$2"
}

# new_log FOLDER: makes the file for the log of this run, the one that ./run --log prints, and prints
# its path. It is in FOLDER if this user cannot write to build/. Deletes the logs of runs that have
# ended, except for the last one.
new_log() {
    local log=$PWD/build/log/$$.log
    local old
    if ! mkdir -p build/log 2>/dev/null || [[ ! -w build/log ]]; then
        log=$1/log
        : >"$log" && echo "$log"
        return
    fi
    for old in build/log/*.log; do
        [[ -d /proc/$(basename "$old" .log) || $old -ef build/log/last ]] || rm -f "$old"
    done
    : >"$log" && ln -sf "$$.log" "build/log/last.$$" && mv -fT "build/log/last.$$" build/log/last &&
        echo "$log"
}
