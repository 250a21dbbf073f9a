#!/usr/bin/env bash
# The panel on a character display of the kernel, in whose place a pipe and an emulator stand; likewise for a knob, and
# folders for LEDs.
# usage: panel_charlcd_test.sh FRONTPANEL EMULATOR [EVENT_WRITER]
set -euo pipefail
# shellcheck source=tests/integration/panel/wait_for.sh
. "$(dirname "${BASH_SOURCE[0]}")/wait_for.sh"

PANEL=$1
EMULATOR=$2
EVENT_WRITER=${3-}
FOLDER=$(mktemp -d)
PANEL_PROCESS=
DISPLAY_PROCESS=
KNOB_PROCESS=
export XDG_STATE_HOME=$FOLDER
clean_up() {
    [ -z "$PANEL_PROCESS" ] || kill -KILL "$PANEL_PROCESS" 2>/dev/null || true
    [ -z "$DISPLAY_PROCESS" ] || kill -KILL "$DISPLAY_PROCESS" 2>/dev/null || true
    [ -z "$KNOB_PROCESS" ] || kill -KILL "$KNOB_PROCESS" 2>/dev/null || true
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

says() {
    grep -qF -- "$1" "$FOLDER/panel"
}

# shows LINE...: the lines of the last picture, without the blanks at their ends.
shows() {
    [ "$(tail -n 7 "$FOLDER/pictures" 2>/dev/null | sed -n '2,5s/^|\(.*[^ ]\)\{0,1\} *|$/\1/p')" = "$(printf '%s\n' "$@")" ]
}

plug_in() {
    mkfifo "$FOLDER/lcd"
    "$EMULATOR" "$FOLDER/lcd" 20 4 >"$FOLDER/pictures" 5>&- &
    DISPLAY_PROCESS=$!
}

unplug() {
    kill "$DISPLAY_PROCESS"
    wait "$DISPLAY_PROCESS" || true
    # The next display must not read the pictures of this one.
    rm "$FOLDER/lcd" "$FOLDER/pictures"
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
rm "$FOLDER/lcd"

# A file that is no device keeps what it holds.
echo precious >"$FOLDER/values"
"$PANEL" --display "charlcd:$FOLDER/values" </dev/null >"$FOLDER/panel" 2>&1 &
PANEL_PROCESS=$!
wait_for "a file is not rejected" says "is unreachable (neither a character device nor a pipe)"
kill -TERM "$PANEL_PROCESS"
wait "$PANEL_PROCESS" || true
PANEL_PROCESS=
[ "$(cat "$FOLDER/values")" = precious ] || fail "a file is overwritten"

# A knob and LEDs beside the display.
[ -n "$EVENT_WRITER" ] || exit 0
for led in edit alive; do
    mkdir "$FOLDER/$led"
    echo 255 >"$FOLDER/$led/max_brightness"
    echo 0 >"$FOLDER/$led/brightness"
    echo 'none [timer]' >"$FOLDER/$led/trigger"
done
plug_in_knob() {
    mkfifo "$FOLDER/event"
    "$EVENT_WRITER" "$FOLDER/event" <"$FOLDER/turns" &
    KNOB_PROCESS=$!
    exec 5>"$FOLDER/turns"
}
turn() {
    echo "2 0 $1" >&5
}
press() {
    printf '1 %s 1\n1 %s 0\n' "$1" "$1" >&5
}
SELECT=28 BACK=1
mkfifo "$FOLDER/turns"
plug_in_knob
plug_in
"$PANEL" --still --display "charlcd:$FOLDER/lcd" --input "evdev:$FOLDER/event" \
    --leds "edit=$FOLDER/edit,alive=$FOLDER/alive" </dev/null >"$FOLDER/panel" 2>&1 5>&- &
PANEL_PROCESS=$!
wait_for "the homescreen" shows " Level=     -18.4 dB" " Gain 3       0.0 dB" "" ""
wait_for "the knob is not found" says "frontpanel: input $FOLDER/event is used"
press $SELECT
wait_for "the menu" shows "Main             1/6" ">Audio           ..." " Video           ..." " Clock           ..."
turn -1
turn -1
wait_for "turns" shows "Main             3/6" " Audio           ..." " Video           ..." ">Clock           ..."
turn 2
press $SELECT
press $SELECT
wait_for "an open editor" shows "Gain 1" "0.0 dB" "" ""
is_lit() {
    [ "$(cat "$FOLDER/edit/brightness")" = "$1" ]
}
wait_for "the LED of an open editor" is_lit 255
[ "$(cat "$FOLDER/edit/trigger")" = none ] || fail "the LED keeps its trigger"

# A knob that is plugged in again goes on.
exec 5>&-
wait "$KNOB_PROCESS" || true
rm "$FOLDER/event"
wait_for "the loss of the knob is not reported" says "frontpanel: input $FOLDER/event is unreachable"
plug_in_knob
turn 3
wait_for "a turn of the knob that was plugged in again" shows "Gain 1" "0.3 dB" "" ""
press $BACK
wait_for "a key that leaves" shows "Audio           1/13" ">Gain 1       0.0 dB" " Mute 1          off" " Gain 2      -3.5 dB"
wait_for "the LED of a closed editor" is_lit 0
STATUS=0
kill -TERM "$PANEL_PROCESS"
wait "$PANEL_PROCESS" || STATUS=$?
PANEL_PROCESS=
[ "$STATUS" = 143 ] || fail "status $STATUS after TERM"
[ "$(cat "$FOLDER/alive/trigger")" = timer ] || fail "the LED does not get its trigger back"
wait "$DISPLAY_PROCESS" || fail "the panel sends what the display does not know"
DISPLAY_PROCESS=
