#!/usr/bin/env bash
# Follows docs/board.md as far as it goes without the board: its file of options is accepted, and a panel that is started
# with it looks for the hardware that the page names.
# usage: panel_board_page_test.sh FRONTPANEL PAGE
set -uo pipefail

# shellcheck source=tests/integration/panel/follow_page.sh
. "$(dirname "${BASH_SOURCE[0]}")/follow_page.sh"

SENSOR_PAGE=$(dirname "$PAGE")/sensor.md
PAGE=$SENSOR_PAGE block json 1 >sensor.json
PAGE=$SENSOR_PAGE run 1
block ini 1 >panel.conf
[ -s panel.conf ] || fail "the page has no file of options"
run 1 && shows 1

[ ! -e /dev/lcd ] || { echo "this machine has a display of its own"; exit "$FAILURES"; }
"$PANEL" --config panel.conf </dev/null >said 2>&1 &
PROCESS=$!
for word in "display /dev/lcd" "input knob" "input buttons" "LED /sys/class/leds/panel:red:alarm"; do
    deadline=$((SECONDS + 30))
    until grep -q "^frontpanel: $word is unreachable (.*); retrying$" said; do
        [ "$SECONDS" -lt "$deadline" ] || { fail "the panel does not look for the $word: $(cat said)"; break; }
        sleep 0.05
    done
done
kill -TERM "$PROCESS"
STATUS=0
wait "$PROCESS" || STATUS=$?
[ "$STATUS" = 143 ] || fail "status $STATUS after TERM"
block systemd 1 | grep -qx "SuccessExitStatus=$STATUS" || fail "the service takes its end for a failure"

[ "$FAILURES" -eq 0 ] && echo "all as expected"
exit "$FAILURES"
