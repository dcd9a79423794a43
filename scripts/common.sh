#!/bin/bash
# What the scripts here share, to be sourced by bash: it goes to the project's folder, and a failure anywhere
# in a pipe counts.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

fail() {
    echo "${0##*/}: $*" >&2
    exit 1
}

# need_writable FOLDER ADVICE: makes the folder; ends with one line when it cannot be made or written in.
need_writable() {
    mkdir -p "$1" 2>/dev/null && [ -w "$1" ] || fail "no files can be made in the folder $1; $2"
}
need_build_folder() { need_writable "$PWD/$1" "copy the project to a folder where you may write"; }

# took: the time since SECONDS was set to 0.
took() { printf '%d min %02d s' $((SECONDS / 60)) $((SECONDS % 60)); }

# report_progress DONE ALL WHAT: how far a long stage is. On a terminal one line that is written over; elsewhere
# one line for each tenth of the way.
declare -A reported=()
report_progress() {
    local tenth=$(($1 * 10 / $2))
    if [ -t 1 ]; then
        printf '\r   %s of %s %s\033[K' "$1" "$2" "$3"
        [ "$1" -lt "$2" ] || echo
    elif [ "${reported[$3]:-}" != "$tenth" ]; then
        echo "   $1 of $2 $3"
        reported[$3]=$tenth
    fi
}
