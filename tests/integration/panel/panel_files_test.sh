#!/usr/bin/env bash
# The files that the panel writes: the device's values, and pictures.
# usage: panel_files_test.sh FRONTPANEL TOUR
set -uo pipefail

# shellcheck source=tests/integration/panel/own_folder.sh
. "$(dirname "${BASH_SOURCE[0]}")/own_folder.sh"
NO_POSTS="warning: live values cannot be posted: /dev is not writable"

# expect STATUS ERRORS ARGUMENT...: runs the panel on a small menu.
expect() {
    local status=0 wanted=$1 errors=$2
    shift 2
    "$PANEL" --menu menu.json "$@" >out 2>errors </dev/null || status=$?
    [ "$status" -eq "$wanted" ] || fail "frontpanel $*: status $status, expected $wanted"
    [ "$(grep -vxF "$NO_POSTS" errors)" = "$errors" ] || fail "frontpanel $*: said '$(cat errors)', expected '$errors'"
}

menu() {
    printf '{"device": {"parameters": [{"pid": 7, "type": "integer", "min": 0, "max": %s, "value": 1}]}, "menu": {"name": "Main", "items": [{"type": "range", "name": "Gain", "pid": 7}]}}' "$1" >menu.json
}

menu 9
printf 'expect 2 |>Gain              1|\nselect\nup 5\nselect\nexpect-write 7 6\n' >edit.script
printf 'expect 2 |>Gain              6|\n' >kept.script
printf 'expect 2 |>Gain              1|\n' >start.script

# ---- values

expect 0 "" --script edit.script
expect 0 "" --script start.script
expect 0 "" --script edit.script --state values
[ "$(cat values)" = '{"version": 1, "values": [
{"pid":7,"index":0,"integer":6}
]}' ] || fail "the values are $(cat values)"
expect 0 "" --script kept.script --state values
[ ! -e values.new ] || fail "a temporary file was left"

# A change that no key made is kept too, and that of a script which ends early.
printf 'set 7 8\nset 7 10\n' >early.script
expect 2 'frontpanel: early.script:2: parameter 7 cannot be set to "10": out of bounds' --script early.script --state values
grep -q '"integer":8' values || fail "a script that ended early left $(cat values)"
printf 'set 7 6\n' >back.script
expect 0 "" --script back.script --state values

# A menu that no longer allows the value says so; one that does not know the parameter keeps it.
menu 5
expect 0 "warning: values: parameter 7 with index 0 has its start value: 6 is out of bounds" --script start.script --state values
grep -q '"integer":6' values || fail "the value was lost although nothing changed: $(cat values)"
menu 9
expect 0 "" --script kept.script --state values

# A damaged file is put aside, and the panel goes on.
printf '{"version": 1, "val' >values
expect 0 "warning: values:1:20: Missing a closing quotation mark in string.; the file is now values.damaged, the device has its start values" --script edit.script --state values
[ "$(cat values.damaged)" = '{"version": 1, "val' ] || fail "the damaged file is $(cat values.damaged)"
grep -q '"integer":6' values || fail "no new file after a damaged one"

# What cannot be written is told, and told again when something is lost.
absent="absent/values: cannot be written: No such file or directory"
expect 0 "warning: $absent" --script start.script --state absent/values
expect 2 "warning: $absent
frontpanel: $absent" --script edit.script --state absent/values
mkdir folder
expect 2 "frontpanel: folder: cannot be read: not a regular file" --script edit.script --state folder
expect 2 "frontpanel: /dev/zero: cannot be read: not a regular file" --script edit.script --state /dev/zero

# A panel that is killed leaves a file that the next one reads, whenever that is.
for i in {1..400}; do printf 'set 7 %d\ntick 5\n' $((i % 2 + 4)); done >busy.script
mkfifo output
for lines in 1 2000 8000; do
    "$PANEL" --menu menu.json --script busy.script --state values >output 2>/dev/null &
    exec 3<output
    head -n "$lines" <&3 >/dev/null
    kill -s KILL $! && wait $! 2>/dev/null
    exec 3<&-
    printf 'tick\n' >any.script
    expect 0 "" --script any.script --state values
done

# A signal that ends a script leaves the value of a moment ago, also when nobody takes the output.
rm values
printf 'set 7 8\n' >long.script
for i in {1..40}; do printf 'tick 1000\n'; done >>long.script
for signal in INT:130 TERM:143 HUP:129 QUIT:131 ALRM:142 USR1:138 USR2:140 XCPU:152; do
    rm -f values
    env --default-signal "$PANEL" --menu menu.json --script long.script --state values >output 2>errors &
    exec 3<output
    for _ in {1..8}; do read -r -u 3 _; done
    kill -s "${signal%:*}" $!
    status=0
    wait $! || status=$?
    exec 3<&-
    [ "$status" -eq "${signal#*:}" ] || fail "status $status after SIG${signal%:*}"
    grep -q '"integer":8' values || fail "after SIG${signal%:*} in a script the values are $(cat values)"
    [ ! -e values.new ] || fail "a temporary file was left"
done
rm -f values
env --default-signal bash -c '"$0" --menu menu.json --script long.script --state values; echo "$?" >status' "$PANEL" | head -n 8 >/dev/null
[ "$(cat status)" -eq 141 ] || fail "status $(cat status) when nobody reads any more"
grep -q '"integer":8' values || fail "when nobody reads any more the values are $(cat values)"

# A limit on files is an error as a full disk is.
(
    ulimit -f 1
    expect 2 "frontpanel: standard output cannot be written" --script long.script
    exit "$FAILURES"
) || fail "with a limit on files"

# The working folder may be gone.
mkdir gone
cd gone || exit 1
rmdir ../gone
for arguments in "0 edit" "2 edit --state values" "2 start --log log" "2 start --screenshot a.svg"; do
    read -r wanted script option <<<"$arguments"
    status=0
    # shellcheck disable=SC2086 # an option with its argument
    "$PANEL" --menu ../menu.json --script "../$script.script" $option >/dev/null 2>../errors || status=$?
    [ "$status" -eq "$wanted" ] || fail "status $status in a folder that is gone with '$option': $(cat ../errors)"
done
cd "$FOLDER" || exit 1

# A file is not overwritten because it was named by mistake.
menu 9
cp menu.json before.json
for option in --log --state --screenshot; do
    expect 2 "frontpanel: menu.json: --menu and $option name the same file" --script start.script "$option" menu.json
done
expect 2 "frontpanel: both: --log and --state name the same file" --script start.script --log both --state both
printf '{"presets": []}' >other.json
expect 2 'frontpanel: other.json:1:1: expected a member "version"; this is not a state file of version 1 or 2 and stays as it is' --script start.script --state other.json
cmp -s menu.json before.json || fail "the menu file was overwritten"

# At a terminal too, however the panel ends: the user quits, or a signal asks it to end.
# edit_at_terminal LAST_KEY: opens the number, turns it up by two, stores it and presses a last key.
edit_at_terminal() {
    printf '\r\033OA\033OA\r%s' "$1"
}
export TERM=xterm
rm -f values
edit_at_terminal q | script -qec "'$PANEL' --menu menu.json --state values" /dev/null >/dev/null || fail "status $? after q"
grep -q '"integer":3' values || fail "after q at the terminal the values are $(cat values)"

mkfifo keys
script -qefc "echo \$\$ >process; exec '$PANEL' --menu menu.json --state values" screen <keys >/dev/null &
terminal=$!
exec 3>keys
edit_at_terminal "" >&3
deadline=$((SECONDS + 60))
until grep -q '"integer":5' values; do
    [ "$SECONDS" -lt "$deadline" ] || break
    sleep 0.02
done
kill -s TERM "$(cat process)"
status=0
wait "$terminal" || status=$?
exec 3>&-
[ "$status" -eq 143 ] || fail "status $status after SIGTERM"
grep -q '"integer":5' values || fail "after SIGTERM at the terminal the values are $(cat values)"

# ---- pictures

printf 'select\nup\n' >picture.script
expect 0 "" --script picture.script --screenshot panel.svg
[ ! -s out ] || fail "a picture was made, and something was printed"
grep -q '^<desc>|Gain                |$' panel.svg || fail "the picture does not show the editor"
expect 0 "" --screenshot start.svg
grep -q '^|&gt;Gain              1|$' start.svg || fail "the picture does not show the start"
expect 1 'kept.script:1: line 2 shows |>Gain              1|, expected |>Gain              6|
kept.script: 1 expectation not met' --script kept.script --screenshot different.svg
[ -s different.svg ] || fail "no picture of what was not expected"
expect 2 'frontpanel: absent/a.svg: cannot be written: No such file or directory' --screenshot absent/a.svg
sed 's/"Gain"/"<\&>\\"]]>"/' menu.json >markup.json
"$PANEL" --menu markup.json --screenshot markup.svg || fail "no picture of a menu with markup"
if command -v xmllint >/dev/null; then
    for picture in panel start different markup; do
        xmllint --noout --nonet "$picture.svg" || fail "$picture.svg is no XML"
    done
fi
if command -v rsvg-convert >/dev/null; then
    rsvg-convert markup.svg -o markup.png || fail "markup.svg cannot be drawn"
fi

[ "$FAILURES" -eq 0 ]
