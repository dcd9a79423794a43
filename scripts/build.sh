#!/bin/sh
# build.sh PRESET [TARGET...]: configures and builds a preset of CMakePresets.json; quiet unless it fails.
set -eu
cd "$(dirname "$0")/.."
preset=$1
shift
mkdir -p build
log=build/$preset.log
echo "== Building ($preset); the first time takes a few minutes"
if ! { cmake --preset "$preset" && cmake --build --preset "$preset" ${1:+--target "$@"}; } \
    >"$log" 2>&1; then
    grep -E 'error|warning|FAILED' "$log" >&2 || tail -n 40 "$log" >&2
    echo "The build failed; all of it is in $log" >&2
    exit 1
fi
