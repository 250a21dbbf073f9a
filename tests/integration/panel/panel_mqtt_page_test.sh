#!/usr/bin/env bash
# Follows docs/home-automation.md literally, on a free port: starts its broker and its lamp, writes its menu, runs its
# commands and compares what they print. Then the broker is stopped and started while the panel runs.
# usage: panel_mqtt_page_test.sh FRONTPANEL PAGE
set -uo pipefail

# shellcheck source=tests/integration/panel/follow_page.sh
. "$(dirname "${BASH_SOURCE[0]}")/follow_page.sh"

for program in /usr/sbin/mosquitto mosquitto_pub mosquitto_sub; do
    if ! command -v "$program" >/dev/null; then
        echo "skipped: $program is not installed"
        exit 77
    fi
done
use_free_port 1883
# The page's clients know only the usual port.
for client in pub sub; do
    printf '#!/bin/sh\nexec %s -p %s "$@"\n' "$(command -v mosquitto_$client)" "$PORT" >bin/mosquitto_$client
    chmod +x bin/mosquitto_$client
done


# Whether the lamp reports what it is told.
lamp_answers() {
    mosquitto_sub -W 1 -R -C 1 -t lamp/state >answer 2>/dev/null &
    mosquitto_pub -t lamp/set -m OFF
    wait $!
    [ -s answer ]
}

# Whether the lamp has this state.
lamp_is() {
    [ "$(mosquitto_sub -W 20 -C 1 -t lamp/state)" = "$1" ]
}

block conf 1 >broker.conf
start 1
BROKER=$STARTED
await_port
run 2
block bash 1 >lamp.sh
start 3
try lamp_answers || fail "the lamp: $(cat started.log)"

block json 1 >home.json
run 4 && shows 1
run 5 && shows 2

# The display, and what a person does at it.
block text 3 >wanted
grep -q "Lamp" wanted || fail "the page shows no display"
{
    expect_display wanted
    printf 'down\ndown\nselect\nup\nselect\ntick\n'
} >person.script
frontpanel --menu home.json --script person.script --size 20x4 >frames 2>errors ||
    fail "the panel: status $?: $(cat errors)"
[ "$(mosquitto_sub -W 20 -C 1 -t panel/status)" = offline ] || fail "the panel has not said that it ends"
try lamp_is ON || fail "the lamp has not been switched"
run 6 && shows 4

# A message that holds no number.
mosquitto_pub -r -t garden/temperature -m unavailable
frontpanel --menu home.json --probe >out 2>errors && fail "a message without a number was read"
grep -qE '^garden +home +-- +-- +not a number: "unavailable"$' out || fail "the probe: $(cat out)"

# The broker is stopped.
stop "$BROKER"
frontpanel --menu home.json --probe >out 2>errors && fail "a broker that is away was read"
grep -qE '^garden +home +-- +-- +Connection refused$' out || fail "the probe: $(cat out)"

# At a desk.
frontpanel --menu home.json --simulate --check >out 2>errors || fail "--simulate: $(cat errors)"

[ "$FAILURES" -eq 0 ] && echo "all as expected"
exit "$FAILURES"
