#!/bin/sh
# without-dialogs.sh ZELPRINT BUNDLE PICTURE: a driver whose module with the dialogs is missing, or cannot
# be loaded, prints as ever; a dialog fails, and one line says why (inside run-xvfb.sh).
zelprint=$1
picture=$3
cd "$HOME" || exit 1
mkdir hot
cp -R "$2" Driver.bundle || exit 1
module=Driver.bundle/PlugIns/Dialogs.bundle/Dialogs
export ZEL_BUNDLE="$HOME/Driver.bundle"

fail() {
    echo "FAILED with the module $state: $1" >&2
    cat err >&2
    exit 1
}

# $1: how the module is, for messages
check() {
    state=$1
    "$zelprint" --hot-folder hot "$picture" >out 2>err || fail "no page comes out"
    grep -q '^No PPD file has been selected' err || fail "the alert's text is lost"
    for dialog in --page-setup --print-dialog; do
        "$zelprint" $dialog "$picture" >out 2>err
        [ $? -eq 4 ] || fail "$dialog does not fail"
        lines=$(grep -c '^The driver.*cannot be loaded: no dialog can be shown' err)
        [ "$lines" = 1 ] || fail "$dialog: $lines lines say why"
    done
}

echo "no library" >"$module"
check unreadable
rm "$module"
check missing
rm -r Driver.bundle/PlugIns
check "without its folder"
exit 0
