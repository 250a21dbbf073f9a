# Sourced by tests that look at a panel from outside. Requires: a function `fail`, which ends the test.
# shellcheck shell=bash

# wait_for WHAT COMMAND...: until the command succeeds. Fails with WHAT after 30 seconds.
wait_for() {
    local what=$1 deadline=$((SECONDS + 30))
    shift
    until "$@"; do
        [ "$SECONDS" -lt "$deadline" ] || fail "$what"
        sleep 0.05
    done
}
