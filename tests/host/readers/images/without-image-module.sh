#!/bin/sh
# without-image-module.sh PROGRAM BUNDLE PICTURE: zelprint itself asks for no library of the image module;
# without the module it says so in one line, and still prints a plain TIFF file.
set -eu
fail() { echo "$1" >&2; exit 1; }
readelf -d "$1" | grep NEEDED | grep -E 'vips|glib' && fail "zelprint loads them in every job"

# A copy alone, which finds no module beside it.
cp "$1" "$HOME/zelprint"
mkdir "$HOME/hot"
zelprint() { "$HOME/zelprint" --quiet --bundle "$2" --hot-folder "$HOME/hot" "$1" 2>"$HOME/messages"; }

status=0
zelprint "$3" "$2" || status=$?
[ "$status" = 4 ] || fail "exit status $status without the module: $(cat "$HOME/messages")"
[ "$(grep -c '^zelprint: the image module cannot be loaded .*; install zelprint again$' "$HOME/messages")" = 1 ] ||
    fail "no clear line: $(cat "$HOME/messages")"
[ -z "$(ls -A "$HOME/hot")" ] || fail "something was left in the hot folder"

# In the resolution of the built-in printer nothing is scaled.
convert -size 100x80 gradient:red-blue -depth 8 -units PixelsPerInch -density 300 -compress none "$HOME/page.tif"
zelprint "$HOME/page.tif" "$2" || fail "a plain TIFF file: $(cat "$HOME/messages")"
[ "$(tail -n 1 "$HOME/hot/page.ps")" = "%%EOF" ] || fail "no page"
