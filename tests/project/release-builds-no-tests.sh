#!/bin/sh
# release-builds-no-tests.sh CMAKE SOURCE_ROOT: what a person builds to try the driver looks for no package
# of the tests and has no test, whatever is installed.
set -eu
build=$HOME/release
cd "$2"
"$1" --preset release -B "$build" >"$HOME/log" 2>&1 || { cat "$HOME/log" >&2; exit 1; }
if grep -iE '^(GTest|SPECTRE|benchmark)' "$build/CMakeCache.txt" || [ -e "$build/tests" ]; then
    echo "the release preset configures tests" >&2
    exit 1
fi
