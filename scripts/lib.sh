# shellcheck shell=bash
# Shared by the scripts beside it; sourced, not run.
# Everything that is said here goes to standard error: standard output belongs to the caller.

SOURCE_DIR=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." >/dev/null && pwd)

# The folders of the parts above the library, bottom up.
# shellcheck disable=SC2034  # used by the scripts that source this
COMPONENTS=(base binding editors menu display ui displays simulator app)

# The Debian packages that each script needs, one list per script.
PANEL_PACKAGES=(
    cmake g++ ninja-build pkg-config
    libboost-dev rapidjson-dev
    libcli11-dev libcpp-httplib-dev libncurses-dev zlib1g-dev
    curl gzip iputils-ping
)
TEST_PACKAGES=(
    "${PANEL_PACKAGES[@]}"
    abigail-tools binutils lcdproc libbenchmark-dev libgmock-dev libgtest-dev librsvg2-bin
    libxml2-utils locales mandoc procps tmux
)
# shellcheck disable=SC2034  # used by the scripts that source this
CI_PACKAGES=(
    "${TEST_PACKAGES[@]}"
    clang clang-format clang-tidy libclang-rt-dev llvm
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
        # A password can be asked for only if somebody is there to type it.
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

# configure_preset PRESET FOLDER: configures if the folder is new or the presets have changed since.
# All other changes to the build files are seen by the build itself.
configure_preset() {
    local preset=$1 folder=$2 stamp="$2/configured.stamp"
    # A folder that was configured elsewhere, as in a copied tree, is of no use here.
    if [ -f "$folder/CMakeCache.txt" ] &&
        ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$SOURCE_DIR" "$folder/CMakeCache.txt"; then
        find "$folder" -mindepth 1 ! -name build.lock -delete
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

# Runs the tests of a preset; CTest's summary comes last.
run_tests() {
    ctest --test-dir "$SOURCE_DIR/build/$1" --output-on-failure --parallel "$(nproc)"
}
