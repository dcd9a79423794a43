#!/bin/bash
# build.sh PRESET [TARGET...]: configures and builds a preset of CMakePresets.json. Says how far it is; what
# else the tools say is shown only when they fail.
source "$(dirname "$0")/common.sh"
preset=$1
shift
need_build_folder build
need_build_folder "build/$preset"
log=build/$preset.log

# Keeps what ninja says, and counts its steps: "[12/345] Building ...".
watch_build() {
    while IFS= read -r line; do
        echo "$line" >&3
        if [[ $line =~ ^\[([0-9]+)/([1-9][0-9]*)\] ]]; then
            report_progress "${BASH_REMATCH[1]}" "${BASH_REMATCH[2]}" "steps done"
        fi
    done 3>>"$log"
}

failed() {
    grep -aE 'error|warning|FAILED' "$log" >&2 || tail -n 40 "$log" >&2
    fail "the build failed; all of it is in $log"
}

echo "== Building ($preset); the first time takes a few minutes"
cmake --preset "$preset" >"$log" 2>&1 || failed
cmake --build --preset "$preset" ${1:+--target "$@"} 2>&1 | watch_build || failed
