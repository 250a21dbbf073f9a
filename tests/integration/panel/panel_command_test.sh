#!/usr/bin/env bash
# Exit statuses and messages of the panel application, run without a terminal.
# usage: panel_command_test.sh FRONTPANEL TOUR
set -uo pipefail

# shellcheck source=tests/integration/panel/own_folder.sh
. "$(dirname "${BASH_SOURCE[0]}")/own_folder.sh"
TOUR=$2

# Posting to a card needs a writable /dev. Where there is none, every panel with cards says so first.
NO_POSTS="warning: live values cannot be posted: /dev is not writable"
if [ -w /dev ] || [ -w /dev/NULL ]; then NOTE=; else NOTE=$NO_POSTS; fi

# expect STATUS ERRORS ARGUMENT...: runs the panel and compares status and standard error as a whole, but for
# that note.
expect() {
    local status=0 wanted=$1 errors=$2
    shift 2
    "$PANEL" "$@" >out 2>errors </dev/null || status=$?
    [ "$status" -eq "$wanted" ] || fail "frontpanel $*: status $status, expected $wanted"
    [ "$(grep -vxF "$NO_POSTS" errors)" = "$errors" ] || fail "frontpanel $*: said '$(cat errors)', expected '$errors'"
}

printf 'select 2\nexpect 2 |>Gain 1       0.0 dB|\n' >good.script
printf 'select 2\nexpect 2 |>Gain 1       9.9 dB|\n' >different.script
printf 'select\n\njump\n' >unknown.script
printf 'set 100.1 5000\n' >impossible.script
printf 'select\nfail read 999 on\n' >fault.script
printf '{"device": {"parameters": []},\n "menu": [}\n' >syntax.json
printf '{"device": {"parameters": []}, "menu": {"name": "Main", "items": [{"type": "range", "name": "Gain", "pid": 7}]}}' >pid.json
printf '{"device": {"parameters": [{"pid": 7, "type": "integer", "min": 0, "max": 9, "value": 1}]}, "menu": {"name": "Main", "items": [{"type": "range", "name": "Gain", "pid": 7}]}}' >small.json
parentheses=$(printf '(%.0s' {1..200})
sed "s/\"pid\": 7}]}}/\"pid\": 7, \"value_format\": \"${parentheses}v${parentheses//(/)}\"}]}}/" small.json >deep.json

expect 0 ""
expect 0 "" --script good.script
expect 0 "" --script "$TOUR"
expect 0 "" --help
expect 0 "" --check --menu small.json
expect 1 "different.script:2: line 2 shows |>Gain 1       0.0 dB|, expected |>Gain 1       9.9 dB|
different.script: 1 expectation not met" --script different.script
expect 2 'frontpanel: unknown.script:3: unknown word "jump"' --script unknown.script
[ ! -s out ] || fail "a script with an unknown word was played"
expect 2 'frontpanel: impossible.script:1: parameter 100.1 cannot be set to "5000": out of bounds' --script impossible.script
expect 2 'frontpanel: absent.script: cannot be opened: No such file or directory' --script absent.script
expect 2 'frontpanel: absent.json: cannot be opened: No such file or directory' --menu absent.json --script good.script
expect 2 'syntax.json:2:11: Invalid value.' --check --menu syntax.json
expect 2 'pid.json:1:108: the device has no parameter 7 with this index' --check --menu pid.json
expect 2 'frontpanel: --size: expected COLUMNSxROWS from 16x2 to 80x16, found "5x1"' --size 5x1
expect 2 'frontpanel: standard output is not a terminal: name a script with --script' --menu small.json
expect 2 'syntax.json:2:11: Invalid value.' --menu syntax.json
expect 2 'frontpanel: absent.json: cannot be opened: No such file or directory' --menu absent.json
expect 2 'deep.json:1:189: not an expression in v: too deeply nested' --check --menu deep.json
expect 2 'deep.json:1:189: not an expression in v: too deeply nested' --menu deep.json
expect 2 'frontpanel: --script: expected the name of a file' --script ''
expect 0 "" --check --script good.script
expect 2 'frontpanel: unknown.script:3: unknown word "jump"' --check --script unknown.script
expect 2 'frontpanel: fault.script:2: the device has no parameter 999' --script fault.script
[ ! -s out ] || fail "a script with an unknown parameter was played"
expect 2 'frontpanel: standard output is not a terminal: name a script with --script' --size 40x4
expect 0 "" --display text --script good.script
expect 2 'frontpanel: standard output is not a terminal: name a script with --script' --display terminal
expect 2 'frontpanel: scripts and pictures are for the display "text"' --display lcdproc --script good.script
expect 2 'frontpanel: scripts and pictures are for the display "text"' --display terminal --screenshot picture.svg
expect 2 'frontpanel: --display: expected terminal, text, lcdproc[:IP[:PORT]] or charlcd[:PATH], found "lcdproc:somewhere"' --display lcdproc:somewhere
printf '12345x\n' >bad.pin
expect 2 'frontpanel: bad.pin: expected a PIN of 4 to 8 digits' --display lcdproc:localhost:1 --pin-file bad.pin
expect 2 'frontpanel: absent.pin: cannot be opened: No such file or directory' --display lcdproc:localhost:1 --pin-file absent.pin
expect 2 'frontpanel: absent/log: cannot be written: No such file or directory' --log absent/log

# The library's lines go to the log, and only there.
"$PANEL" --debug 0x8401 --log log --script good.script >out 2>errors || fail "status with --debug"
[ -s log ] || fail "the log is empty"
grep -q '^\[' out && fail "diagnostics on standard output"
[ "$(head -1 out)" = "+--------------------+" ] || fail "the first line is $(head -1 out)"
"$PANEL" --script good.script >/dev/null || fail "status with the default log"
[ -f "$FOLDER/frontpanel.log" ] || fail "no log in the state folder"

# Cards run while a menu with some is shown, and leave nothing behind.
mkdir temporary
TMPDIR=$FOLDER/temporary "$PANEL" --script good.script >/dev/null 2>errors || fail "status with TMPDIR"
[ "$(cat errors)" = "$NOTE" ] || fail "said '$(cat errors)', expected '$NOTE'"

# Nor does one that a signal ends, here while nobody takes its output.
for _ in {1..40}; do echo "tick 1000"; done >long.script
mkfifo output
for signal in INT:130 TERM:143 HUP:129 QUIT:131; do
    TMPDIR=$FOLDER/temporary env --default-signal "$PANEL" --script long.script >output 2>/dev/null &
    exec 3<output
    read -r -u 3 _ || fail "no output before SIG${signal%:*}"
    kill -s "${signal%:*}" $!
    status=0
    wait $! || status=$?
    exec 3<&-
    [ "$status" -eq "${signal#*:}" ] || fail "status $status after SIG${signal%:*}"
done
rmdir temporary || fail "the folder for temporary files is not empty"

# What somebody wrote into a name reaches no terminal as a command.
control=$(printf '\033[2J \302\2332J \2332J')
expect 2 'frontpanel: ?[2J ?2J ?2J: cannot be opened: No such file or directory' --menu "$control"
cp small.json "$control"
expect 0 "" --check --menu "$control"
[ "$(cat out)" = "?[2J ?2J ?2J: a menu of 2 entries" ] || fail "--check printed '$(cat -v out)'"

# Reports are all that is on standard output, also with diagnostics.
expect 0 "" --dump --menu small.json --debug 0xffffffff
grep -qx '  Gain  range  7 .* allowed 0..9' out || fail "--dump printed '$(cat out)'"
expect 0 "" --dump=json --menu small.json --debug 0xffffffff
[ "$(head -c 28 out)" = '{"version": 1, "entries": [' ] || fail "--dump=json printed '$(cat out)'"
expect 2 'frontpanel: --dump: expected table or json, found "xml"' --dump=xml
expect 0 "" --explain Gain --menu small.json --debug 0xffffffff
[ "$(cat out)" = "Gain: shown
  allowed: 0..9" ] || fail "--explain printed '$(cat out)'"
expect 2 'frontpanel: the menu has no entry "Bass"' --explain Bass --menu small.json
expect 2 'frontpanel: --explain: expected a path or an id' --explain '' --menu small.json
expect 2 'frontpanel: --dump excludes --graph' --dump --graph
expect 2 'frontpanel: --check excludes --dump' --check --dump
expect 0 "" --graph --debug 0xffffffff
grep -qx 'digraph "Main" {' out || fail "--graph begins with '$(head -1 out)'"
if command -v dot >/dev/null; then
    dot -Tsvg <out >graph.svg 2>errors || fail "dot: $(cat errors)"
    [ "$(grep -c 'class="node"' graph.svg)" -ge 20 ] || fail "dot draws $(grep -c 'class="node"' graph.svg) nodes"
fi

if [ -w /dev/full ]; then
    for report in --dump --graph "--explain Gain" --check --help --version; do
        # shellcheck disable=SC2086 # an option with its argument
        status=0
        "$PANEL" $report --menu small.json >/dev/full 2>errors || status=$?
        [ "$status" -eq 2 ] || fail "status $status of $report on a full device"
        [ "$(cat errors)" = "frontpanel: standard output cannot be written" ] || fail "said '$(cat errors)'"
    done
    "$PANEL" --script good.script >/dev/full 2>errors && fail "a full device went unnoticed"
    [ "$(grep -vxF "$NO_POSTS" errors)" = "frontpanel: standard output cannot be written" ] || fail "said '$(cat errors)'"
fi

[ "$FAILURES" -eq 0 ]
