# shellcheck shell=bash
# Shared by the scripts beside it; sourced, not run.
# Everything that is said here goes to standard error: standard output belongs to the caller.

SOURCE_DIR=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." >/dev/null && pwd)

# The folders of the parts above the library, bottom up; each driver is a part of its own.
DRIVERS=()
for folder in "$SOURCE_DIR"/drivers/*/CMakeLists.txt; do
    [ ! -e "$folder" ] || DRIVERS+=("drivers/$(basename "$(dirname "$folder")")")
done
# shellcheck disable=SC2034  # used by the scripts that source this
COMPONENTS=(base binding editors menu display ui displays inputs simulator drivers "${DRIVERS[@]}" app)

# The Debian packages that each script needs, one list per script.
PANEL_PACKAGES=(
    cmake g++ ninja-build pkg-config
    libboost-dev rapidjson-dev
    libcli11-dev libcpp-httplib-dev libevdev-dev libmodbus-dev libmosquitto-dev libncurses-dev
    zlib1g-dev
    curl gzip iputils-ping
)
TEST_PACKAGES=(
    "${PANEL_PACKAGES[@]}"
    abigail-tools binutils lcdproc libbenchmark-dev libgmock-dev libgtest-dev librsvg2-bin
    libxml2-utils locales mandoc mosquitto mosquitto-clients openssl procps
    python3 python3-pymodbus python3-serial-asyncio socat tmux
)
# The peer that the evaluator is compared with.
# shellcheck disable=SC2034  # used by the scripts that source this
BENCH_PACKAGES=("${TEST_PACKAGES[@]}" libfparser-dev)
# shellcheck disable=SC2034
CI_PACKAGES=(
    "${TEST_PACKAGES[@]}"
    clang clang-format clang-tidy libclang-rt-dev llvm
)

# For scripts/test --arch: what it needs on this machine, the compiler of each architecture, and the
# packages of that architecture that the panel and the tests use (libc-bin holds a locale). The linker
# packs the library's relocations (cmake/footprint.cmake).
# shellcheck disable=SC2034
CROSS_PACKAGES=("${TEST_PACKAGES[@]}" lld-16 qemu-user)
declare -A CROSS_COMPILERS=(
    [armhf]=g++-arm-linux-gnueabihf
    [arm64]=g++-aarch64-linux-gnu
    [s390x]=g++-s390x-linux-gnu
)
# shellcheck disable=SC2034
DEVICE_PACKAGES=(
    libc-bin libcpp-httplib-dev libevdev-dev libgmock-dev libgtest-dev libmodbus-dev libmosquitto-dev
    libncurses-dev zlib1g-dev
)

say() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
}

# Prints those of its arguments that are not installed.
missing_packages() {
    local package status
    for package in "$@"; do
        status=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null) || true
        [ "$status" = installed ] || printf '%s\n' "$package"
    done
}

# Runs a command quietly: what it prints goes to a log, which is shown only if the command fails.
run_logged() {
    local log=$1 status=0
    shift
    "$@" >"$log" 2>&1 </dev/null || status=$?
    if [ "$status" -ne 0 ]; then
        cat "$log" >&2
        say "failed ($status): $*"
    fi
    return "$status"
}

# Installs the named packages unless all of them are there.
ensure_packages() {
    local missing=() as_root=() apt_get=() log
    mapfile -t missing < <(missing_packages "$@")
    [ "${#missing[@]}" -gt 0 ] || return 0

    if ! command -v apt-get >/dev/null; then
        say "these Debian packages are needed, and there is no apt-get to install them: ${missing[*]}"
        return 1
    fi
    if [ "$(id -u)" -ne 0 ]; then
        # sudo can ask for a password only at a terminal.
        if ! command -v sudo >/dev/null || { [ ! -t 0 ] && ! sudo -n true 2>/dev/null; }; then
            say "these packages are needed, and only root can install them. Run:"
            say "    apt-get install ${missing[*]}"
            return 1
        fi
        as_root=(sudo)
    fi

    say "installing ${missing[*]}"
    mkdir -p "$SOURCE_DIR/build"
    log="$SOURCE_DIR/build/packages.log"
    apt_get=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive
        apt-get --yes -o Acquire::Retries=3 -o DPkg::Lock::Timeout=300)
    run_logged "$log" "${apt_get[@]}" update &&
        run_logged "$log" "${apt_get[@]}" install --no-install-recommends "${missing[@]}"
}

# download_packages ARCHITECTURE FOLDER PACKAGE...: downloads packages of another architecture and all that
# they depend on to FOLDER/archives. The machine's own packages and its list of architectures stay as they are,
# and nothing needs root.
download_packages() {
    local architecture=$1 folder=$2 apt_get=()
    shift 2
    mkdir -p "$folder/lists/partial" "$folder/archives/partial"
    apt_get=(apt-get --yes
        -o Acquire::Retries=3
        -o APT::Architecture="$architecture" -o APT::Architectures::="$architecture"
        -o Debug::NoLocking=true
        -o Dir::Cache="$folder" -o Dir::State="$folder" -o Dir::State::status=/dev/null)
    # A source that cannot be read does not matter if the others have the packages.
    "${apt_get[@]}" update >"$folder/update.log" 2>&1 </dev/null || true
    run_logged "$folder/download.log" \
        "${apt_get[@]}" install --download-only --no-install-recommends "$@" || {
        cat "$folder/update.log" >&2
        return 1
    }
}

# unpack_packages ARCHIVES SYSROOT
unpack_packages() {
    local archive link
    for archive in "$1"/*.deb; do
        dpkg-deb --extract "$archive" "$2" || return 1
    done
    # Links that start at the root would lead out of the folder.
    while read -r link; do
        ln --symbolic --force --no-dereference --relative "$2$(readlink "$link")" "$link" || return 1
    done < <(find "$2" -type l -lname '/*')
}

# fetch_sysroot ARCHITECTURE FOLDER PACKAGE...
fetch_sysroot() {
    local architecture=$1 folder=$2
    shift 2
    [ "$(cat "$folder/sysroot.stamp" 2>/dev/null)" != "$*" ] || return 0
    say "fetching the libraries for $architecture"
    rm -rf "$folder/sysroot" "$folder/sysroot.stamp" "$folder/configured.stamp" "$folder/packages"
    mkdir -p "$folder/sysroot"
    download_packages "$architecture" "$folder/packages" "$@" &&
        unpack_packages "$folder/packages/archives" "$folder/sysroot" &&
        rm -rf "$folder/packages" &&
        printf '%s\n' "$*" >"$folder/sysroot.stamp"
}

# ensure_sysroot ARCHITECTURE PRESET PACKAGE...: unpacks the packages and all that they depend on to the root
# folder that the preset's toolchain file expects, unless they are there.
ensure_sysroot() {
    local architecture=$1 folder="$SOURCE_DIR/build/$2"
    shift 2
    mkdir -p "$folder"
    {
        flock 9 && fetch_sysroot "$architecture" "$folder" "$@"
    } 9>"$folder/build.lock"
}

# prepare_architecture ARCHITECTURE: installs and fetches what the preset ARCHITECTURE-tests needs.
prepare_architecture() {
    ensure_packages "${CROSS_PACKAGES[@]}" "${CROSS_COMPILERS[$1]}" &&
        ensure_sysroot "$1" "$1-tests" "${DEVICE_PACKAGES[@]}"
}

# configure_preset PRESET FOLDER: configures if the folder is new or the presets have changed since.
# All other changes to the build files are seen by the build itself.
configure_preset() {
    local preset=$1 folder=$2 stamp="$2/configured.stamp"
    # A folder that was configured elsewhere, as in a copied tree, is of no use here.
    if [ -f "$folder/CMakeCache.txt" ] &&
        ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$SOURCE_DIR" "$folder/CMakeCache.txt"; then
        find "$folder" -mindepth 1 -maxdepth 1 ! -name build.lock ! -name 'sysroot*' -exec rm -rf {} +
    fi
    if [ -f "$stamp" ] && [ ! "$SOURCE_DIR/CMakePresets.json" -nt "$stamp" ]; then
        return 0
    fi
    say "configuring and building $preset, which takes a while"
    (cd "$SOURCE_DIR" && run_logged "$folder/configure.log" cmake --preset "$preset") &&
        touch "$stamp"
}

# build_preset PRESET TARGET...: brings the targets up to date, one build of a preset at a time.
build_preset() {
    local preset=$1 folder="$SOURCE_DIR/build/$1"
    shift
    mkdir -p "$folder"
    {
        flock 9 &&
            configure_preset "$preset" "$folder" &&
            run_logged "$folder/build.log" cmake --build "$folder" --parallel "$(nproc)" --target "$@"
    } 9>"$folder/build.lock"
}

# run_tests PRESET [CTEST_ARGUMENT]...: runs those tests of a preset that its build can run; CTest's summary
# comes last. One more than the processors can work on: some tests mostly wait for a device's time limit.
run_tests() {
    local preset=$1
    shift
    (cd "$SOURCE_DIR" && ctest --preset "$preset" --parallel "$(($(nproc) + 1))" "$@")
}
