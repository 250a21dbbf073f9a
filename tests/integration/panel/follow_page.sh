# Sourced by the tests that follow a page of the documentation literally, with the arguments FRONTPANEL and PAGE: works in a
# folder of its own, where `frontpanel` is the panel.
# shellcheck shell=bash
# shellcheck source=tests/integration/panel/own_folder.sh
. "$(dirname "${BASH_SOURCE[0]}")/own_folder.sh"
PAGE=$2
RUNNING=() # what `start` has started
trap 'stop "${RUNNING[@]}"; rm -rf "$FOLDER"' EXIT

mkdir bin
printf '#!/bin/sh\nexec "%s" "$@"\n' "$PANEL" >bin/frontpanel
chmod +x bin/frontpanel
PATH=$FOLDER/bin:$PATH

PORT=
PORT_OF_PAGE=

# use_free_port NUMBER: the page's port is replaced by a free one, $PORT.
use_free_port() {
    PORT_OF_PAGE=$1
    PORT=$(/usr/bin/python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
}

# The Nth block of a kind: of the lines between ```KIND and ```.
block() {
    awk -v kind="\`\`\`$1" -v wanted="$2" '
        $0 == kind { inside = 1; ++number; next }
        /^```/ { inside = 0 }
        inside && number == wanted' "$PAGE" | sed "s/${PORT_OF_PAGE:-no port}/$PORT/"
}

# start N: the Nth block of commands in the background; its last command takes the place of the shell. $STARTED is its
# process; what it prints is in "started.log".
start() {
    block sh "$1" >commands
    [ -s commands ] || fail "there is no block of commands $1"
    setsid bash -e <(sed '$s/^/exec /' commands) >>started.log 2>&1 &
    STARTED=$!
    RUNNING+=("$STARTED")
}

# stop PROCESS...: ends what `start` has started, with all that it has started itself.
stop() {
    local process
    for process; do
        kill -- "-$process" 2>/dev/null
        wait "$process" 2>/dev/null
    done
}

# try COMMAND...: repeats it until it succeeds, for at most about 20 s.
try() {
    for _ in $(seq 200); do
        "$@" && return
        sleep 0.1
    done
    return 1
}

is_listening() {
    (exec 3<>"/dev/tcp/127.0.0.1/$PORT") 2>/dev/null
}

# Waits until the program that was started last listens at $PORT.
await_port() {
    try is_listening || fail "nothing listens: $(cat started.log)"
}

# expect_display FILE: lines of a script that compare the display with a block of text.
expect_display() {
    local line row=0
    while IFS= read -r line; do
        row=$((row + 1))
        printf 'expect %d |%-20s|\n' "$row" "$line"
    done <"$1"
}

# run N: the Nth block of commands; what it prints is in "out".
run() {
    block sh "$1" >commands
    [ -s commands ] || fail "there is no block of commands $1"
    bash -e commands >out 2>errors || fail "commands $1: status $?: $(cat errors)"
    [ ! -s errors ] || fail "commands $1: $(cat errors)"
}

# The columns of a table whatever their widths, and the age of a value whatever it is.
columns() {
    sed -E 's/[0-9]+\.[0-9] s/AGE/; s/ +/ /g' "$1"
}

# shows N: what was printed is the Nth block of text.
shows() {
    block text "$1" >wanted
    diff <(columns wanted) <(columns out) || fail "text $1"
}
