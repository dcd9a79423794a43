#!/bin/sh
# keyboard-focus.sh ZELPRINT PICTURE: under a window manager, the page-setup dialog has the keyboard when
# it comes up after an alert (inside run-xvfb.sh). Keys go to whatever window has the focus; it once was
# none after the alert had gone.
zelprint=$1
picture=$2
command -v xdotool >/dev/null && command -v openbox >/dev/null || exit 77
cd "$HOME" || exit 1
mkdir hot
openbox >/dev/null 2>&1 &
manager=$!
"$zelprint" --page-setup --hot-folder hot --colour-space gray "$picture" >out 2>&1 &
job=$!
trap 'kill "$manager" "$job" 2>/dev/null' EXIT

# $1: part of a window's name. Waits until it has the focus.
await() {
    tries=0
    until xdotool getwindowfocus getwindowname 2>/dev/null | grep -q "$1"; do
        tries=$((tries + 1))
        if [ "$tries" -gt 2000 ]; then
            echo "the window $1 never had the focus" >&2
            cat out >&2
            exit 1
        fi
        sleep 0.2
    done
    sleep 0.5
}

await '^zelprint$' # an alert
xdotool key Return
await ZEL
xdotool key Return
wait "$job" || { cat out >&2; exit 1; }
[ "$(tail -n 1 hot/*.ps)" = "%%EOF" ]
