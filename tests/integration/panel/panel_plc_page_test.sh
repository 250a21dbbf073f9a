#!/usr/bin/env bash
# Follows docs/plc.md literally, on a free port: starts its controller, writes its menu, runs its commands and compares
# what they print.
# usage: panel_plc_page_test.sh FRONTPANEL PAGE
set -uo pipefail

# shellcheck source=tests/integration/panel/follow_page.sh
. "$(dirname "${BASH_SOURCE[0]}")/follow_page.sh"

if ! /usr/bin/python3 -c 'import pymodbus.server' 2>/dev/null; then
    echo "skipped: python3-pymodbus is not installed"
    exit 77
fi
use_free_port 1502

block python 1 >plc.py
start 1
await_port

block json 1 >plc.json
run 2 && shows 1
run 3 && shows 2

# The display, and what a person does at it.
block text 3 >wanted
grep -q "Speed" wanted || fail "the page shows no display"
{
    expect_display wanted
    printf 'down\nselect\nup\nup\nselect\ntick\n'
} >person.script
frontpanel --menu plc.json --script person.script --size 20x4 >frames 2>errors ||
    fail "the panel: status $?: $(cat errors)"
run 4 && shows 4

# The other bits of the register have been kept.
sed 's/"holding": 100}/"holding": 101}/' plc.json >register.json
frontpanel --menu register.json --probe 2>errors | grep -qE '^speed +plc +161 ' || fail "the register: $(cat errors)"

# The controller is stopped.
stop "$STARTED"
frontpanel --menu plc.json --probe >out 2>errors && fail "a controller that is away was read"
grep -qE '^speed +plc +-- +-- +Connection refused$' out || fail "the probe: $(cat out)"

# At a desk.
frontpanel --menu plc.json --simulate --check >out 2>errors || fail "--simulate: $(cat errors)"

[ "$FAILURES" -eq 0 ] && echo "all as expected"
exit "$FAILURES"
