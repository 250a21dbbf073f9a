#!/usr/bin/env bash
# The panel where libmosquitto cannot be used: only a menu with a broker notices.
# usage: panel_mqtt_library_test.sh FRONTPANEL
set -uo pipefail

# shellcheck source=tests/integration/panel/own_folder.sh
. "$(dirname "${BASH_SOURCE[0]}")/own_folder.sh"
mkdir libraries
: >libraries/libmosquitto.so.1
export LD_LIBRARY_PATH=$FOLDER/libraries

# expect STATUS OUTPUT ARGUMENT...: runs the panel, and looks for a line in what it prints.
expect() {
    local status=0 wanted=$1 line=$2
    shift 2
    "$PANEL" "$@" >out 2>&1 </dev/null || status=$?
    [ "$status" -eq "$wanted" ] || fail "frontpanel $*: status $status, expected $wanted"
    grep -qF "$line" out || fail "frontpanel $*: said '$(cat out)', expected '$line'"
}

# menu DRIVERS MEMBERS: a menu whose device and whose only parameter have these members, too.
menu() {
    printf '{"device": {%s"parameters": [\n{"pid": 7, "type": "integer", "min": 0, "max": 9, %s}]}, "menu": {"name": "Main", "items": [{"type": "range", "name": "Gain", "pid": 7}]}}' "$1" "$2" >menu.json
}

FAULT="MQTT needs a library that cannot be opened: $FOLDER/libraries/libmosquitto.so.1: "
menu '"drivers": {"home": {"driver": "mqtt", "host": "127.0.0.1", "port": 9}}, ' '"source": {"topic": "gain"}'
expect 0 "menu.json:1:33: warning: $FAULT" --menu menu.json --check
expect 1 "$FAULT" --menu menu.json --probe
printf 'tick\n' >tick.script
expect 0 "Gain" --menu menu.json --script tick.script
menu "" '"value": 1'
expect 0 "menu.json: a menu of 2 entries" --menu menu.json --check
! grep -q MQTT out || fail "a menu without a broker opens the library"

[ "$FAILURES" -eq 0 ] && echo "all of it works without the library"
[ "$FAILURES" -eq 0 ]
