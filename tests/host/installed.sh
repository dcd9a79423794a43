#!/bin/sh
# installed.sh CMAKE BUILD_FOLDER SCRIPT PICTURE: what is installed finds its parts wherever the folder is,
# and nothing of the build: a page and, in the test SCRIPT, the print dialog (inside run-xvfb.sh).
set -eu
"$1" --install "$2" --prefix "$HOME/first" >"$HOME/log" || { cat "$HOME/log" >&2; exit 1; }
mv "$HOME/first" "$HOME/moved"
program=$HOME/moved/bin/zelprint
mkdir "$HOME/pages"
env -u DISPLAY "$program" --quiet --hot-folder "$HOME/pages" "$4" 2>/dev/null
[ "$(tail -n 1 "$HOME/pages/"*.ps)" = "%%EOF" ] || { echo "no page" >&2; exit 1; }
if find "$HOME/moved" -type f | while read -r file; do readelf -d "$file" 2>/dev/null; done |
    grep -E 'RPATH|RUNPATH' | grep -v 'ORIGIN'; then
    echo "an installed file looks for libraries in the build" >&2
    exit 1
fi
exec "$3" "$program" "$4"
