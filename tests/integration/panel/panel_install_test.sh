#!/usr/bin/env bash
# An installed panel runs on its own: with its library and its menus, also after the tree was moved.
# usage: panel_install_test.sh CMAKE BUILD BIN_FOLDER MENU_FOLDER [EMULATOR...]     (the folders are under a prefix)
set -euo pipefail

CMAKE=$1 BUILD=$2 BIN=$3 MENUS=$4 DATA=${4%%/frontpanel_data/*}
EMULATOR=("${@:5}")
FOLDER=$(mktemp -d)
trap 'rm -rf "$FOLDER"' EXIT
cd "$FOLDER"
export XDG_STATE_HOME=$FOLDER

# run FILE ARGUMENT...
run() {
    "${EMULATOR[@]}" "$@"
}

fail() {
    echo "FAILED: $*"
    exit 1
}

for component in Runtime Panel; do
    "$CMAKE" --install "$BUILD" --prefix "$FOLDER/first" --component "$component" >/dev/null
done
mv first moved

panel=$FOLDER/moved/$BIN/frontpanel
said=$(run "$panel" --check) || fail "--check ends with $?"
case $said in
    "$FOLDER/moved/$MENUS/demo.json: a menu of "*) ;;
    *) fail "--check says '$said'" ;;
esac
run "$panel" >tour </dev/null || fail "the tour ends with $?"
grep -qF '|>Audio           ...|' tour || fail "the tour does not show the menu"

# Its example, manual page and completions come with it.
for file in frontpanel_data/frontpanel.conf man/man1/frontpanel.1 bash-completion/completions/frontpanel zsh/site-functions/_frontpanel; do
    [ -s "moved/$DATA/$file" ] || fail "$file is not installed"
done

# A link elsewhere, as in a folder of the search path, leads to the same files.
ln -s "$panel" linked
[ "$(run ./linked --check)" = "$said" ] || fail "through a link --check says '$(run ./linked --check)'"

# Without its menus it says what it looked for.
rm -r "moved/$MENUS"
status=0
run "$panel" --check 2>errors >out || status=$?
[ "$status" -eq 2 ] || fail "status $status without menus"
[ "$(cat errors)" = "frontpanel: $FOLDER/moved/$MENUS/demo.json: cannot be opened: No such file or directory" ] ||
    fail "without menus it says '$(cat errors)'"
