#!/bin/sh
# print-dialog.sh ZELPRINT PICTURE: runs zelprint's print dialog as a person does (inside run-xvfb.sh):
# Escape cancels the job, Return prints it into the hot folder.
zelprint=$1
picture=$2
command -v xdotool >/dev/null || exit 77
cd "$HOME" || exit 1
mkdir hot
defaults write com.zel.PostscriptPrinterDriver HotFolder "$HOME/hot" || exit 1

fail() {
    echo "FAILED: $1" >&2
    cat err >&2
    kill "$job" 2>/dev/null
    exit 1
}

# Waits for a window whose name holds $1 and presses the key $2 in it, until it is gone.
press() {
    tries=0
    seen=
    while [ "$tries" -lt 2000 ]; do
        window=$(xdotool search --onlyvisible --name "$1" 2>/dev/null | tail -n 1)
        if [ -n "$window" ]; then
            seen=yes
            xdotool windowfocus "$window" 2>/dev/null
            xdotool key "$2" 2>/dev/null
        elif [ -n "$seen" ]; then
            return 0
        fi
        tries=$((tries + 1))
        sleep 0.3
    done
    fail "the window $1 did not come, or did not go"
}

# $1: key pressed in the dialog, $2: wanted exit status
job() {
    "$zelprint" --print-dialog --colour-space gray "$picture" >out 2>err &
    job=$!
    press '^zelprint$' Return # an alert: no PPD file has been selected
    press ZEL "$1"
    wait "$job"
    status=$?
    [ "$status" -eq "$2" ] || fail "exit status $status instead of $2 after $1"
}

job Escape 130
grep -q '^zelprint: cancelled' err || fail "no word about the cancellation"
[ -z "$(ls -A hot)" ] || fail "a cancelled job left $(ls -A hot)"

job Return 0
file=$(ls -A hot)
[ "$(tail -n 1 "hot/$file")" = "%%EOF" ] || fail "no complete document in the hot folder: $file"
exit 0
