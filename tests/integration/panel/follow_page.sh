# Sourced by the tests that follow a page of the documentation literally, with the arguments FRONTPANEL and PAGE: works in a
# folder of its own, where `frontpanel` is the panel.
# shellcheck shell=bash
PANEL=$1
PAGE=$2
FOLDER=$(mktemp -d)
trap 'rm -rf "$FOLDER"' EXIT
cd "$FOLDER" || exit 1
export XDG_STATE_HOME=$FOLDER
FAILURES=0

fail() {
    echo "FAILED: $*"
    FAILURES=$((FAILURES + 1))
}

mkdir bin
printf '#!/bin/sh\nexec "%s" "$@"\n' "$PANEL" >bin/frontpanel
chmod +x bin/frontpanel
PATH=$FOLDER/bin:$PATH

# The Nth block of a kind: of the lines between ```KIND and ```.
block() {
    awk -v kind="\`\`\`$1" -v wanted="$2" '
        $0 == kind { inside = 1; ++number; next }
        /^```/ { inside = 0 }
        inside && number == wanted' "$PAGE"
}

# run N: the Nth block of commands; what it prints is in "out".
run() {
    block sh "$1" >commands
    [ -s commands ] || fail "there is no block of commands $1"
    bash -e commands >out 2>errors || fail "commands $1: status $?: $(cat errors)"
    [ ! -s errors ] || fail "commands $1: $(cat errors)"
}

# shows N: what was printed is the Nth block of text, whatever the age of a value is.
shows() {
    block text "$1" >wanted
    diff <(sed -E 's/[0-9]+\.[0-9] s/AGE/' wanted) <(sed -E 's/[0-9]+\.[0-9] s/AGE/' out) ||
        fail "text $1"
}
