# What ./run and ./test share: the packages they need, and building a preset. Sourced by bash, with
# the tree as the working directory. Only the caller writes to standard output.

packages=(
    android-libbase-dev android-libcutils-dev android-liblog-dev android-libutils-dev
    cmake g++ hidl-gen libcli11-dev libgmock-dev libgtest-dev libtinyxml2-dev ninja-build
    nlohmann-json3-dev python3
)
# For the sanitizers' and the fuzzers' presets, and for the checks of form.
clang_packages=(clang clang-format clang-tidy libclang-rt-14-dev)
# For ./test --coverage: llvm-cov and llvm-profdata.
coverage_packages=(llvm)
# For tests/device: scripts, module definitions, policy.
device_packages=(blueprint-tools checkpolicy lld m4)
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

# build PRESET [TARGET...]: configures the preset unless that is done, and builds.
build() {
    local preset=$1
    shift
    local targets=()
    (($#)) && targets=(--target "$@")
    if [[ ! -f build/$preset/build.ninja ]]; then
        cmake --preset "$preset" >&2 || return
    fi
    cmake --build "build/$preset" "${targets[@]}" >&2
}
