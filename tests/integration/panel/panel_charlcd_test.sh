#!/usr/bin/env bash
# The panel on a character display of the kernel, in whose place a pipe and an emulator stand.
# usage: panel_charlcd_test.sh FRONTPANEL EMULATOR
set -euo pipefail

PANEL=$1
EMULATOR=$2
FOLDER=$(mktemp -d)
PANEL_PROCESS=
DISPLAY_PROCESS=
export XDG_STATE_HOME=$FOLDER
clean_up() {
    [ -z "$PANEL_PROCESS" ] || kill -KILL "$PANEL_PROCESS" 2>/dev/null || true
    [ -z "$DISPLAY_PROCESS" ] || kill -KILL "$DISPLAY_PROCESS" 2>/dev/null || true
    rm -rf "$FOLDER"
}
trap clean_up EXIT

fail() {
    echo "FAILED: $*"
    echo "the display:"
    tail -n 7 "$FOLDER/pictures" || true
    echo "the panel:"
    cat "$FOLDER/panel" || true
    exit 1
}

# wait_for WHAT COMMAND...: until the command succeeds.
wait_for() {
    local what=$1 deadline=$((SECONDS + 30))
    shift
    until "$@"; do
        [ "$SECONDS" -lt "$deadline" ] || fail "$what"
        sleep 0.05
    done
}

says() {
    grep -qF -- "$1" "$FOLDER/panel"
}

# shows LINE...: the lines of the last picture, without the blanks at their ends.
shows() {
    [ "$(tail -n 7 "$FOLDER/pictures" | sed -n '2,5s/^|\(.*[^ ]\)\{0,1\} *|$/\1/p')" = "$(printf '%s\n' "$@")" ]
}

plug_in() {
    mkfifo "$FOLDER/lcd"
    "$EMULATOR" "$FOLDER/lcd" 20 4 >"$FOLDER/pictures" &
    DISPLAY_PROCESS=$!
}

unplug() {
    kill "$DISPLAY_PROCESS"
    wait "$DISPLAY_PROCESS" || true
    rm "$FOLDER/lcd"
}

# The panel comes first, and waits for its display.
"$PANEL" --still --display "charlcd:$FOLDER/lcd" </dev/null >"$FOLDER/panel" 2>&1 &
PANEL_PROCESS=$!
wait_for "a missing display is not reported" says \
    "frontpanel: display $FOLDER/lcd is unreachable (No such file or directory); retrying"
plug_in
wait_for "the homescreen" shows " Level=     -18.4 dB" " Gain 3       0.0 dB" "" ""
says "frontpanel: display $FOLDER/lcd shows the panel on 20x4" || fail "the display is not reported"

# A display that is plugged in again shows the whole frame.
unplug
plug_in
wait_for "the homescreen again" shows " Level=     -18.4 dB" " Gain 3       0.0 dB" "" ""

# Nothing is left on it that could be taken for a value.
STATUS=0
kill -TERM "$PANEL_PROCESS"
wait "$PANEL_PROCESS" || STATUS=$?
PANEL_PROCESS=
[ "$STATUS" = 143 ] || fail "status $STATUS after TERM"
STATUS=0
wait "$DISPLAY_PROCESS" || STATUS=$?
DISPLAY_PROCESS=
[ "$STATUS" = 0 ] || fail "the panel sends what the display does not know"
shows "" "" "" "" || fail "the display of a panel that has ended is not blank"

# A file that is no device keeps what it holds.
echo precious >"$FOLDER/values"
"$PANEL" --display "charlcd:$FOLDER/values" </dev/null >"$FOLDER/panel" 2>&1 &
PANEL_PROCESS=$!
wait_for "a file is not rejected" says "is unreachable (neither a character device nor a pipe)"
kill -TERM "$PANEL_PROCESS"
wait "$PANEL_PROCESS" || true
PANEL_PROCESS=
[ "$(cat "$FOLDER/values")" = precious ] || fail "a file is overwritten"
