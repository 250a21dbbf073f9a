# Sourced by tests that run the panel in a folder of their own, with the panel as their first argument. `fail` counts
# failures.
# shellcheck shell=bash disable=SC2034
PANEL=$1
FOLDER=$(mktemp -d)
trap 'rm -rf "$FOLDER"' EXIT
cd "$FOLDER" || exit 1
export XDG_STATE_HOME=$FOLDER
FAILURES=0

fail() {
    echo "FAILED: $*"
    FAILURES=$((FAILURES + 1))
}
