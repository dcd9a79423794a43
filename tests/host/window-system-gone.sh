#!/bin/sh
# window-system-gone.sh ZELPRINT PPD PICTURE: the window system goes away while a dialog is open, or an
# alert before it: the program ends with a line that says so. Inside run-isolated.sh.
zelprint=$1
ppd=$2
picture=$3
command -v xdotool >/dev/null || exit 77
cd "$HOME" || exit 1
xvfb=
job=

fail() {
    echo "FAILED: $1" >&2
    cat err >&2
    if [ -n "$job" ]; then kill -KILL "$job" 2>/dev/null; fi
    if [ -n "$xvfb" ]; then kill "$xvfb" 2>/dev/null; fi
    exit 1
}

# $1: part of the window's title, the others: options
goes_under() {
    title=$1
    shift
    Xvfb -displayfd 1 -noreset -nolisten tcp </dev/null >display 2>/dev/null &
    xvfb=$!
    tries=0
    until DISPLAY=":$(cat display)" && [ "$DISPLAY" != : ]; do
        tries=$((tries + 1))
        [ "$tries" -lt 3000 ] || fail "Xvfb did not start"
        sleep 0.1
    done
    export DISPLAY
    "$zelprint" "$@" --print-dialog "$picture" >out 2>err &
    job=$!
    tries=0
    until xdotool search --onlyvisible --name "$title" >/dev/null 2>&1; do
        tries=$((tries + 1))
        [ "$tries" -lt 3000 ] || fail "no window $title"
        sleep 0.1
    done
    kill "$xvfb"
    wait "$xvfb" 2>/dev/null
    wait "$job"
    status=$?
    [ "$status" -eq 4 ] || fail "exit status $status"
    grep -q '^zelprint: the window system has gone; nothing was printed$' err || fail "no word"
}

goes_under '^zelprint$' # an alert
goes_under ZEL --ppd "$ppd"
exit 0
