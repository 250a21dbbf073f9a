#!/usr/bin/env bash
# The help, the manual page, the shells' completions and the example of a configuration list the same options.
# usage: panel_help_test.sh FRONTPANEL PACKAGING_FOLDER
set -uo pipefail

export PANEL=$1
PACKAGING=$2
FAILURES=0

fail() {
    echo "FAILED: $*"
    FAILURES=$((FAILURES + 1))
}

# What is in a list of options, one a line, on standard input.
options_in() {
    grep -oE -- '--[a-z][a-z-]*' | sort -u
}

OPTIONS=$("$PANEL" --help | grep -E '^  (-|   )' | cut -c1-27 | options_in)
[ "$(wc -l <<<"$OPTIONS")" -ge 10 ] || fail "--help names only $OPTIONS"
LONGEST=$("$PANEL" --help | awk '{ if (length > most) most = length } END { print most }')
LINES_USED=$("$PANEL" --help | wc -l)
[ "$LONGEST" -le 80 ] || fail "--help has a line of $LONGEST characters"
[ "$LINES_USED" -le 40 ] || fail "--help has $LINES_USED lines, more than a page"

# same WHAT OPTIONS: what has these options has those of the help.
same() {
    [ "$2" = "$OPTIONS" ] || fail "options of --help (<) and of $1 (>) differ:
$(diff <(echo "$OPTIONS") <(echo "$2"))"
}

MANUAL=$PACKAGING/frontpanel.1
same frontpanel.1 "$(sed -nE 's/^\.It Fl (h , Fl )?(-[a-z-]+).*/-\2/p' "$MANUAL" | options_in)"
same _frontpanel "$(options_in <"$PACKAGING/completion/_frontpanel")"
same frontpanel.conf "$({
    sed -nE 's/^#([a-z-]+)( = .*)?$/--\1/p' "$PACKAGING/frontpanel.conf"
    printf '%s\n' --config --help --version # which a file cannot have
} | options_in)"
same frontpanel.bash "$(sed -n "s/^ *local options='\(.*\)'$/\1/p" "$PACKAGING/completion/frontpanel.bash" | options_in)"

if command -v mandoc >/dev/null; then
    WARNINGS=$(mandoc -T lint -W style "$MANUAL") || fail "mandoc says: $WARNINGS"
    SHOWN=$(mandoc -T ascii "$MANUAL" | sed 's/.\x08//g')
    for option in $OPTIONS; do
        grep -q -- "^ *\(-h, \)\?$option\b" <<<"$SHOWN" || fail "the manual page does not show $option"
    done
fi
if command -v groff >/dev/null && [ -d /usr/share/groff/current/tmac ]; then
    WARNINGS=$(groff -mandoc -ww -Tascii -z "$MANUAL" 2>&1)
    [ -z "$WARNINGS" ] || fail "groff says: $WARNINGS"
fi

# ---- completion, as bash asks for it

FOLDER=$(mktemp -d)
trap 'rm -rf "$FOLDER"' EXIT
cd "$FOLDER" || exit 1
mkdir "a folder"
touch my.json "other menu.json" my.script notes.txt

# complete_words WORD...: the completions of the last word.
complete_words() {
    bash -c '
        set -u
        . "$0"
        COMP_WORDS=("$PANEL" "$@") COMP_CWORD=$#
        _frontpanel
        [ "${#COMPREPLY[@]}" -eq 0 ] || printf "%s|" "${COMPREPLY[@]}"
    ' "$PACKAGING/completion/frontpanel.bash" "$@"
}

# completes WANTED WORD...
completes() {
    local wanted=$1 found
    shift
    found=$(complete_words "$@" 2>&1)
    [ "$found" = "$wanted" ] || fail "'frontpanel $*' completes to '$found', expected '$wanted'"
}

[ "$(complete_words -- | tr '|' '\n' | options_in)" = "$OPTIONS" ] || fail "not every option is completed"
completes "--menu|" --me
completes "" --debug ""
completes "a folder|my.json|other menu.json|" --menu ""
completes "my.json|" --menu my
completes "my.script|" --script my
completes "notes.txt|" --log n
completes "20x2|20x4|" --size 20
completes "terminal|text|" --display t
completes "lcdproc|" --display lcd
completes "charlcd|" --display c
completes "a00|a02|" --charset a
completes "--script|--screenshot|" --menu my.json --sc
completes "" --menu absent

[ "$FAILURES" -eq 0 ]
