#!/usr/bin/env bash
# Follows docs/sensor.md literally: writes its file, runs its commands and compares what they print.
# usage: panel_sensor_page_test.sh FRONTPANEL PAGE
set -uo pipefail

# shellcheck source=tests/integration/panel/follow_page.sh
. "$(dirname "${BASH_SOURCE[0]}")/follow_page.sh"

run 1
block json 1 >sensor.json
run 2 && shows 1
run 3 && shows 2

# The display, and what a person does at it.
block text 3 >wanted
grep -q "Limit" wanted || fail "the page shows no display"
{
    expect_display wanted
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
