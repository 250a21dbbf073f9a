#!/usr/bin/env bash
# The panel on the display of a real LCDproc server, whose driver shows it in a terminal of tmux: keys typed there
# reach the panel, and what the panel shows is read from there.
# usage: panel_lcdproc_test.sh FRONTPANEL TOUR
set -euo pipefail
# shellcheck source=tests/integration/panel/wait_for.sh
. "$(dirname "${BASH_SOURCE[0]}")/wait_for.sh"

PANEL=$1
PATH=$PATH:/usr/sbin
for tool in tmux LCDd; do
    if ! command -v "$tool" >/dev/null; then
        echo "skipped: $tool is not installed"
        exit 77
    fi
done

FOLDER=$(mktemp -d)
PANEL_PROCESS=
mkdir "$FOLDER/temporary"
export TMUX_TMPDIR=$FOLDER XDG_STATE_HOME=$FOLDER TMPDIR=$FOLDER/temporary LC_ALL=C.UTF-8
unset TMUX
terminal() {
    tmux -f /dev/null -L lcdproc "$@"
}
clean_up() {
    [ -z "$PANEL_PROCESS" ] || kill -KILL "$PANEL_PROCESS" 2>/dev/null || true
    terminal kill-server 2>/dev/null || true
    rm -rf "$FOLDER"
}
trap clean_up EXIT

fail() {
    echo "FAILED: $*"
    echo "the display:"
    terminal capture-pane -p -t server || true
    echo "the panel:"
    cat "$FOLDER/panel" || true
    echo "the server:"
    tail -n 20 "$FOLDER/server" || true
    exit 1
}

is_listening() {
    (: </dev/tcp/127.0.0.1/"$PORT") 2>/dev/null
}

# A port on which nobody listens, below those that the system hands out.
choose_port() {
    PORT=$((20000 + RANDOM % 10000))
    while is_listening; do
        PORT=$((20000 + RANDOM % 10000))
    done
}

configure_server() {
    cat >"$FOLDER/LCDd.conf" <<END
[server]
DriverPath=$(dirname "$(find /usr/lib -path '*/lcdproc/curses.so' | head -n 1)")/
Driver=curses
Bind=127.0.0.1
Port=$PORT
ReportToSyslog=no
Foreground=yes
AutoRotate=off
ServerScreen=no
User=$(id -un)
[menu]
[curses]
Size=20x4
TopLeftX=1
TopLeftY=1
DrawBorder=no
END
}

start_server() {
    terminal new-session -d -s server -x 80 -y 24 "LCDd -c '$FOLDER/LCDd.conf' 2>>'$FOLDER/server'"
    wait_for "the server does not start" is_listening
}

stop_server() {
    terminal kill-session -t server
}

# start_panel ARGUMENT...: in the background; what it says goes to a file.
start_panel() {
    "$PANEL" --still --display "lcdproc:localhost:$PORT" "$@" </dev/null >"$FOLDER/panel" 2>&1 &
    PANEL_PROCESS=$!
}

# stop_panel SIGNAL STATUS. Not INT, which the shell has its background processes ignore.
stop_panel() {
    local status=0
    kill -"$1" "$PANEL_PROCESS"
    wait "$PANEL_PROCESS" || status=$?
    PANEL_PROCESS=
    [ "$status" = "$2" ] || fail "status $status after $1"
}

says() {
    grep -qF -- "$1" "$FOLDER/panel"
}

press() {
    terminal send-keys -t server "$@"
}

# The four lines of the display, whole. The driver keeps a blank line and column for a border.
display() {
    terminal capture-pane -p -t server | sed -n '2,5s/^ \(.\{0,20\}\).*/\1/p;2,5s/^$//p'
}

# shows LINE...: the display's lines, without the blanks at their ends.
shows() {
    [ "$(display)" = "$(printf '%s\n' "$@")" ]
}

expect() {
    local what=$1
    shift
    wait_for "$what: expected $(printf '\n%s' "$@")" shows "$@"
}

choose_port
configure_server

# The panel comes first, and waits for its display.
start_panel
wait_for "a server that is unreachable is not told" says \
    "frontpanel: display server 127.0.0.1 port $PORT is unreachable (Connection refused)"
# tmux ends with its last session, and a session that begins meanwhile is lost: this one lasts.
terminal new-session -d -s lasting cat
start_server
wait_for "the display is not told" says "shows the panel on 20x4"
expect "the homescreen" " Level=     -18.4 dB" " Gain 3       0.0 dB" "" ""
press Enter
expect "the top menu" \
    "Main             1/6" ">Audio           ..." " Video           ..." " Clock           ..."

# Keys in, frames out.
press Down Down
expect "a key that moves" \
    "Main             3/6" " Audio           ..." " Video           ..." ">Clock           ..."
press Up Up Enter
expect "a key that opens" \
    "Audio           1/13" ">Gain 1       0.0 dB" " Mute 1          off" " Gain 2      -3.5 dB"
press Enter Up Up
expect "a value being edited" "Gain 1" "0.2 dB" "" ""

# The server goes away in the middle of it; the panel keeps what is being edited.
stop_server
# A server that was not there at first, and then not for long, is one absence.
wait_for "the loss of the server is not told" says "is unreachable ("
start_server
expect "what was being edited" "Gain 1" "0.2 dB" "" ""
press Up Enter
expect "what was edited" \
    "Audio           1/13" ">Gain 1       0.3 dB" " Mute 1          off" " Gain 2      -3.5 dB"
press Escape
expect "a key that leaves" \
    "Main             1/6" ">Audio           ..." " Video           ..." " Clock           ..."
! says answered || fail "the server refuses a command"

# What the panel leaves is the server's again.
is_gone() {
    ! terminal capture-pane -p -t server | grep -q Audio
}
stop_panel TERM 143
wait_for "the screen of a panel that has ended stays" is_gone

# Keys as somebody wants them, and a panel that is larger than the display.
start_panel --keys 'n=down,o=select,x=back,5=1' --size 40x4
expect "a large panel on a small display" " Level=" " Gain 3" "" ""
press o
expect "a menu of a large panel on a small display" \
    "Main" ">Audio" " Video" " Clock"
press n Down n
expect "only the named keys count" \
    "Main" " Audio" " Video" ">Clock"
press 5
expect "a shortcut" "Audio" ">Gain 1" " Mute 1" " Gain 2"
stop_panel HUP 129

# A menu's texts with quotes, braces and backslashes arrive as they are; a panel with a PIN asks for it from the start on.
cat >"$FOLDER/quotes.json" <<'END'
{"device": {"parameters": [{"pid": 1, "type": "integer", "min": 0, "max": 9, "value": 5}]},
 "menu": {"name": "a \"b\" \\c", "items": [
    {"type": "range", "name": "{x} #1 -cursor", "pid": 1, "format": "%d \\\""}]}}
END
echo 1001 >"$FOLDER/pin"
start_panel --menu "$FOLDER/quotes.json" --timeout 3 --pin-file "$FOLDER/pin"
expect "quotes and backslashes" 'a "b" \c         1/1' '>{x} #1 -cursor 5 \"' "" ""
press Enter
expect "the question for the PIN at the start" Locked "PIN 0___" "" ""
press Up Right Right Enter Up Enter
press Right
expect "an open editor" '{x} #1 -cursor' '5 \"' "" ""
expect "a panel that nobody uses goes home" 'a "b" \c         1/1' '>{x} #1 -cursor 5 \"' "" ""
press Enter
expect "the question for the PIN" Locked "PIN 0___" "" ""
press Up Enter Enter Enter Up Enter
expect "the right PIN" 'a "b" \c         1/1' '>{x} #1 -cursor 5 \"' "" ""
press Enter
expect "an open panel" '{x} #1 -cursor' '5 \"' "" ""
stop_panel TERM 143

rmdir "$FOLDER/temporary" || fail "the folder for temporary files is not empty"
