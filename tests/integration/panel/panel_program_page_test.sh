#!/usr/bin/env bash
# Follows docs/own-program.md literally: writes its files, runs its commands and compares what they print.
# usage: panel_program_page_test.sh FRONTPANEL PAGE
set -uo pipefail

# shellcheck source=tests/integration/panel/follow_page.sh
. "$(dirname "${BASH_SOURCE[0]}")/follow_page.sh"

# play KEY...: a person at the display of the page, whose first frame is as the page shows it.
play() {
    {
        expect_display display
        printf '%s\n' "$@"
    } >person.script
    frontpanel --menu room.json --script person.script --size 20x4 >frames 2>errors
}

block python 1 >room.py
block json 1 >room.json
run 1 && shows 1
run 2 && shows 2
run 3 && shows 3

block text 4 >display
grep -q Target display || fail "the page shows no display"
play down select up select tick || fail "the panel: status $?: $(cat errors)"
run 4 && shows 5

# A target beyond what the program takes.
sed -i 's/"target": 23/"target": 30/' room.py
sed -i 's/23 C/30 C/' display
play down select up select tick tick
grep -q 'write refused:' frames || fail "the refusal on the display: $(cat frames)"
grep -q 'target: write refused: expected 5 to 30' frontpanel.log || fail "the refusal in the log: $(cat errors frontpanel.log)"
[ "$(cat target)" = 24 ] || fail "a refused target was kept: $(cat target)"

# A program that is missing, and a name that is mistyped.
sed 's/"python3"/"no-such-program"/; s/"command"/"comand"/' room.json >mistaken.json
frontpanel --menu mistaken.json --check >out 2>errors && fail "a mistake was not reported"
grep -q 'unknown member "comand"; did you mean "command"?' out errors || fail "--check: $(cat out errors)"
sed 's/"python3"/"no-such-program"/' room.json >missing.json
frontpanel --menu missing.json --check >out 2>errors || fail "a missing program is no mistake"
grep -q 'warning: cannot be reached here: PATH has no program "no-such-program"' out errors ||
    fail "--check: $(cat out errors)"

# At a desk.
frontpanel --menu room.json --simulate --check >out 2>errors || fail "--simulate: $(cat errors)"

[ "$FAILURES" -eq 0 ] && echo "all as expected"
exit "$FAILURES"
