#!/usr/bin/env bash
# Follows docs/sensor.md literally: writes its file, runs its commands and compares what they print.
# usage: panel_sensor_page_test.sh FRONTPANEL PAGE
set -uo pipefail

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

run 1
block json 1 >sensor.json
run 2 && shows 1
run 3 && shows 2

# The display, and what a person does at it.
block text 3 >wanted
grep -q "Limit" wanted || fail "the page shows no display"
{
    row=0
    while IFS= read -r line; do
        row=$((row + 1))
        printf 'expect %d |%-20s|\n' "$row" "$line"
    done <wanted
    printf 'down\nselect\nup\nselect\ntick\n'
} >person.script
frontpanel --menu sensor.json --script person.script --size 20x4 >frames 2>errors ||
    fail "the panel: status $?: $(cat errors)"
run 4 && shows 4

# The sensor is pulled.
rm -r chips/hwmon3
frontpanel --menu sensor.json --probe >out 2>errors && fail "a missing sensor was read"
grep -q '^temperature  kernel  --     --   nothing is named "acme_chip"$' out || fail "the probe: $(cat out)"

# At a desk.
frontpanel --menu sensor.json --simulate --check >out 2>errors || fail "--simulate: $(cat errors)"

[ "$FAILURES" -eq 0 ] && echo "all as expected"
exit "$FAILURES"
