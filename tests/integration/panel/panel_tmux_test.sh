#!/usr/bin/env bash
# The tour in a real terminal, and what becomes of the terminal afterwards.
# usage: panel_tmux_test.sh FRONTPANEL TOUR
#
# The keys of the tour are typed into a terminal of tmux, and its display lines are looked for on the screen.
# The tour's last sections need a device that fails and time that stands still, so they are left out.
set -euo pipefail
# shellcheck source=tests/integration/panel/wait_for.sh
. "$(dirname "${BASH_SOURCE[0]}")/wait_for.sh"

PANEL=$1
TOUR=$2
HOMESCREEN=" Level=     -18.4 dB" # its first line
if ! command -v tmux >/dev/null; then
    echo "skipped: tmux is not installed"
    exit 77
fi

FOLDER=$(mktemp -d)
mkdir "$FOLDER/temporary"
export TMUX_TMPDIR=$FOLDER XDG_STATE_HOME=$FOLDER TMPDIR=$FOLDER/temporary LC_ALL=C.UTF-8
unset TMUX
terminal() {
    tmux -f /dev/null -L panel "$@"
}
trap 'terminal kill-server 2>/dev/null || true; rm -rf "$FOLDER"' EXIT

fail() {
    echo "FAILED: $*"
    echo "the screen:"
    terminal capture-pane -p
    exit 1
}

shell_is_back() {
    [ "$(terminal display-message -p '#{pane_current_command}')" = bash ]
}

screen_line() {
    terminal capture-pane -p | sed -n "$1p"
}

# A display line stands one line below its number, between the borders.
shows_line() {
    local line
    line=$(screen_line $(($1 + 1)))
    # shellcheck disable=SC2053  # the expectation is a pattern
    [[ ${line:1:20} == $2 ]]
}

shows_leds() {
    local edit=' ' alarm=' '
    [[ $1 != *edit* ]] || edit='*'
    [[ $1 != *alarm* ]] || alarm='*'
    [[ $(screen_line 7) == "($edit) Edit  ($alarm) Alarm"* ]]
}

screen_has() {
    terminal capture-pane -p | grep -qF -- "$1"
}

# press WORD COUNT: a key of a script.
press() {
    local key count=${2:-1}
    case $1 in
        up) key=Up ;;
        down) key=Down ;;
        select) key=Enter ;;
        back) key=BSpace ;;
        coarser) key=Left ;;
        finer) key=Right ;;
        favourites) key=f ;;
        shortcut) key=$2 count=1 ;;
    esac
    terminal send-keys -N "$count" "$key"
}

# Backspace goes back where nothing can be typed, Escape everywhere. But Escape would become part of a key that follows
# at once: it is for a step back whose outcome is waited for.
play_tour() {
    local word rest row text number=0 is_back=
    while read -r word rest; do
        number=$((number + 1))
        if [ -n "$is_back" ]; then
            case $word in
                "" | say | expect-write | expect-no-write) ;;
                expect) terminal send-keys Escape && is_back= ;;
                *) press back && is_back= ;;
            esac
        fi
        case $word in
            "#") [[ $rest != "What follows needs a device that fails"* ]] || return 0 ;;
            back) [ -n "$rest" ] && press back "$rest" || is_back=yes ;;
            up | down | select | coarser | finer | favourites | shortcut) press "$word" "$rest" ;;
            expect)
                row=${rest%% *}
                text=${rest#*|}
                wait_for "$TOUR:$number: line $row is not |${text%|}|" shows_line "$row" "${text%|}"
                ;;
            expect-leds) wait_for "$TOUR:$number: LEDs are not $rest" shows_leds "$rest" ;;
            "" | say | expect-write | expect-no-write) ;;
            *) fail "$TOUR:$number: \"$word\" means nothing in a terminal" ;;
        esac
    done <"$TOUR"
    fail "$TOUR: the end of what a terminal can show is not marked"
}

# start NAME [ARGUMENTS]: runs the panel in the shell of the terminal; its status and the terminal's state follow it.
start() {
    terminal send-keys "clear; stty -g >before; '$PANEL' --still ${2:-}; echo status \$? of $1; stty -g >after; touch done.$1" Enter
    wait_for "the panel does not show" shows_line 1 "$HOMESCREEN"
}

# ended NAME STATUS: the panel has ended, and the terminal is as before.
ended() {
    wait_for "the panel of $1 does not end" test -e "$FOLDER/done.$1"
    wait_for "status of $1 is not $2" screen_has "status $2 of $1"
    cmp "$FOLDER/before" "$FOLDER/after" || fail "$1 leaves other terminal settings"
    [ "$(terminal display-message -p '#{alternate_on} #{cursor_flag}')" = "0 1" ] ||
        fail "$1 leaves the other screen, or no cursor"
}

panel_process() {
    ps -o pid= --ppid "$(terminal display-message -p '#{pane_pid}')" | tr -d ' '
}

terminal new -d -x 80 -y 24 -c "$FOLDER" "bash --norc --noprofile"

start tour
play_tour
terminal send-keys BSpace BSpace
terminal send-keys q
ended tour 0

# Live lists come from their cards by and by. A choice is posted where /dev is writable.
start cards
terminal send-keys 8
wait_for "the combo box of a card is not fetched" shows_line 3 " Preset         News"
terminal send-keys Down Down
wait_for "the tree of a card is not fetched" shows_line 4 ">Route       Outputs"
terminal send-keys Up Enter Up
wait_for "the options of a card are not offered" shows_line 2 "Film                "
wait_for "the place of an option is not told" shows_line 1 "Preset           3/4"
terminal send-keys Enter
if [ -w /dev ] || [ -w /dev/NULL ]; then
    wait_for "an option of a card is not taken" shows_line 3 ">Preset         Film"
else
    wait_for "an option that is not posted is not told" shows_line 2 "write failed        "
    terminal send-keys Enter
fi
terminal send-keys Down Enter Up Up
wait_for "the lines of a tree are not offered" shows_line 2 "[*][*]Camera 1          "
terminal send-keys BSpace q
ended cards 0

# A warning is in its list while its cause lasts, and any key acknowledges it.
sed '/"Temperature, /s/"value": [0-9]*/"value": 75/' "$(dirname "$TOUR")/demo.json" >"$FOLDER/hot.json"
start warning "--menu hot.json"
terminal send-keys 5 Up
wait_for "there is no warning" shows_line 3 ">Alarm*"
terminal send-keys Enter
wait_for "a warning does not open" shows_line 2 "Frame too hot: clean"
terminal send-keys +
wait_for "a warning is not acknowledged" shows_line 3 ">Alarm*"
terminal send-keys q
ended warning 0

# In a menu the arrows leave and select as Escape and Enter do; in an editor they move the cursor.
start keys
terminal send-keys Right
wait_for "the right arrow does not open the menu" shows_line 2 ">Audio           ..."
terminal send-keys Right
wait_for "the right arrow does not select" shows_line 2 ">Gain 1       0.0 dB"
terminal send-keys Right Left Up Right Up
wait_for "the arrows do not move between digits" shows_line 2 "1.1 dB              "
wait_for "the arrows end the editor" shows_leds edit
terminal send-keys Escape
wait_for "escape does not discard" shows_line 2 ">Gain 1       0.0 dB"
terminal send-keys Left
wait_for "the left arrow does not leave" shows_line 2 ">Audio           ..."
terminal send-keys Right
wait_for "the right arrow does not select" shows_line 2 ">Gain 1       0.0 dB"
terminal send-keys Escape
wait_for "escape does not leave" shows_line 2 ">Audio           ..."
terminal send-keys F1
wait_for "F1 is no shortcut" shows_line 2 ">Gain 1       0.0 dB"

# A terminal that becomes too small says so, and the panel is back when there is room again.
terminal resize-window -x 30 -y 8
wait_for "no message on a small terminal" screen_has "Terminal too small"
screen_has "needs 40x11, has 30x8" || fail "the sizes are not told"
terminal resize-window -x 80 -y 24
wait_for "the panel does not come back" shows_line 2 ">Gain 1       0.0 dB"
wait_for "the legend does not come back" screen_has "quit"

terminal send-keys q
ended keys 0

# A terminal shows whatever takes one column, and one without UTF-8 has plain forms.
cat >"$FOLDER/signs.json" <<'END'
{"device": {"parameters": [{"name": "r", "pid": 1, "type": "integer", "min": 0, "max": 9, "value": 5}]},
 "menu": {"name": "Gerät 日", "items": [{"type": "range", "name": "Prüfling", "parameter": "r", "format": "≤ %d kΩ"}]}}
END
terminal send-keys "clear; '$PANEL' --menu signs.json" Enter
wait_for "the signs of a value" shows_line 2 ">Prüfling     ≤ 5 kΩ"
wait_for "a wide character has a mark" shows_line 1 "Gerät [?]          1/1"
terminal send-keys q
wait_for "the panel with signs does not end" shell_is_back
terminal send-keys "clear; LC_ALL=C '$PANEL' --menu signs.json" Enter
wait_for "the signs of a value in ASCII" shows_line 2 ">Prufling     [?] 5 k[?]"
terminal send-keys q
wait_for "the panel in ASCII does not end" shell_is_back

# A terminal on which nothing can be placed is refused, and so is none at all.
terminal send-keys "clear; TERM=dumb '$PANEL'; echo status \$? of dumb" Enter
wait_for "a terminal without a cursor is not refused" screen_has "status 2 of dumb"
screen_has 'frontpanel: terminal type "dumb" cannot move its cursor' || fail "no reason for dumb"
terminal send-keys "clear; TERM= '$PANEL'; echo status \$? of none" Enter
wait_for "no terminal type is not refused" screen_has "status 2 of none"
screen_has 'frontpanel: terminal type "" is not known' || fail "no reason for no terminal type"

# With standard error closed the panel runs as ever.
terminal send-keys "clear; '$PANEL' --still 2>&-; echo status \$? of closed" Enter
wait_for "the panel needs standard error" shows_line 1 "$HOMESCREEN"
terminal send-keys q
wait_for "status with standard error closed" screen_has "status 0 of closed"

for signal in INT:130 TERM:143 HUP:129 QUIT:131 SEGV:139 ABRT:134 USR1:138 ALRM:142; do
    start "${signal%:*}"
    kill -"${signal%:*}" "$(panel_process)"
    ended "${signal%:*}" "${signal#*:}"
done

# A card that does not answer does not hold Ctrl-C up. What dies of it leaves the rest of its command line undone.
mkdir "$FOLDER/slow"
printf '#!/bin/sh\ntouch "%s/fetching"\nexec sleep 15\n' "$FOLDER" >"$FOLDER/slow/curl"
chmod +x "$FOLDER/slow/curl"
terminal send-keys "clear; stty -g >before; PATH='$FOLDER/slow':\$PATH '$PANEL' --still" Enter
wait_for "the panel with a slow card does not show" shows_line 1 "$HOMESCREEN"
rm -f "$FOLDER/fetching"
terminal send-keys 8
wait_for "no card is asked" test -e "$FOLDER/fetching"
STARTED=$SECONDS
terminal send-keys C-c
wait_for "Ctrl-C does not end the panel" shell_is_back  # what is typed before is thrown away
terminal send-keys "clear; stty -g >after; touch done.slow" Enter
wait_for "the shell does not go on after Ctrl-C" test -e "$FOLDER/done.slow"
[ $((SECONDS - STARTED)) -lt 10 ] || fail "Ctrl-C waits for the card"
cmp "$FOLDER/before" "$FOLDER/after" || fail "Ctrl-C leaves other terminal settings"

rmdir "$FOLDER/temporary" || fail "the folder for temporary files is not empty"
