#!/usr/bin/env bash
# Follows docs/plc.md literally, on a free port: starts its controller, writes its menu, runs its commands and compares
# what they print.
# usage: panel_plc_page_test.sh FRONTPANEL PAGE
set -uo pipefail

PANEL=$1
PAGE=$2
FOLDER=$(mktemp -d)
CONTROLLER=
cleanup() {
    [ -z "$CONTROLLER" ] || kill "$CONTROLLER" 2>/dev/null
    rm -rf "$FOLDER"
}
trap cleanup EXIT
cd "$FOLDER" || exit 1
export XDG_STATE_HOME=$FOLDER
FAILURES=0

fail() {
    echo "FAILED: $*"
    FAILURES=$((FAILURES + 1))
}

if ! /usr/bin/python3 -c 'import pymodbus.server' 2>/dev/null; then
    echo "skipped: python3-pymodbus is not installed"
    exit 77
fi

mkdir bin
printf '#!/bin/sh\nexec "%s" "$@"\n' "$PANEL" >bin/frontpanel
chmod +x bin/frontpanel
PATH=$FOLDER/bin:$PATH
PORT=$(/usr/bin/python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')

# The Nth block of a kind: of the lines between ```KIND and ```.
block() {
    awk -v kind="\`\`\`$1" -v wanted="$2" '
        $0 == kind { inside = 1; ++number; next }
        /^```/ { inside = 0 }
        inside && number == wanted' "$PAGE" | sed "s/1502/$PORT/"
}

# run N: the Nth block of commands; what it prints is in "out".
run() {
    block sh "$1" >commands
    [ -s commands ] || fail "there is no block of commands $1"
    bash -e commands >out 2>errors || fail "commands $1: status $?: $(cat errors)"
    [ ! -s errors ] || fail "commands $1: $(cat errors)"
}

# The columns of a table whatever their widths, and the age of a value whatever it is.
columns() {
    sed -E 's/[0-9]+\.[0-9] s/AGE/; s/ +/ /g' "$1"
}

# shows N: what was printed is the Nth block of text.
shows() {
    block text "$1" >wanted
    diff <(columns wanted) <(columns out) || fail "text $1"
}

is_listening() {
    (exec 3<>"/dev/tcp/127.0.0.1/$PORT") 2>/dev/null
}

block python 1 >plc.py
block sh 1 >commands
# The controller takes the place of the shell, so that it can be ended.
bash -c "exec $(cat commands)" >controller.log 2>&1 &
CONTROLLER=$!
for _ in $(seq 200); do
    is_listening && break
    kill -0 "$CONTROLLER" 2>/dev/null || break
    sleep 0.1
done
is_listening || fail "the controller: $(cat controller.log)"

block json 1 >plc.json
run 2 && shows 1
run 3 && shows 2

# The display, and what a person does at it.
block text 3 >wanted
grep -q "Speed" wanted || fail "the page shows no display"
{
    row=0
    while IFS= read -r line; do
        row=$((row + 1))
        printf 'expect %d |%-20s|\n' "$row" "$line"
    done <wanted
    printf 'down\nselect\nup\nup\nselect\ntick\n'
} >person.script
frontpanel --menu plc.json --script person.script --size 20x4 >frames 2>errors ||
    fail "the panel: status $?: $(cat errors)"
run 4 && shows 4

# The other bits of the register have been kept.
sed 's/"holding": 100}/"holding": 101}/' plc.json >register.json
frontpanel --menu register.json --probe 2>errors | grep -qE '^speed +plc +161 ' || fail "the register: $(cat errors)"

# The controller is stopped.
kill "$CONTROLLER"
wait "$CONTROLLER" 2>/dev/null
CONTROLLER=
frontpanel --menu plc.json --probe >out 2>errors && fail "a controller that is away was read"
grep -qE '^speed +plc +-- +-- +Connection refused$' out || fail "the probe: $(cat out)"

# At a desk.
frontpanel --menu plc.json --simulate --check >out 2>errors || fail "--simulate: $(cat errors)"

[ "$FAILURES" -eq 0 ] && echo "all as expected"
exit "$FAILURES"
