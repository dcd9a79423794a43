#!/bin/sh
# print-queue.sh up|down|no-lpr ZELPRINT PICTURE [FAULTS]: prints through the default print queue, and what becomes
# of the document when there is none. "up" runs under run-cups.sh; FAULTS is what FaultyFiles.cpp builds.
set -eu
state=$1 zelprint=$2 picture=$3
fail() {
    echo "$1" >&2
    cat "$HOME/messages" >&2
    exit 1
}
cd "$HOME"
mkdir hot queued

print() { # FOLDER OPTION...: status in $status
    folder=$1
    shift
    status=0
    "$zelprint" --quiet --hot-folder "$folder" -t Document "$@" "$picture" >messages 2>&1 || status=$?
}

expectKept() {
    [ "$status" -eq 5 ] || fail "exit status $status instead of 5"
    [ "$(ls queued)" = Document.ps ] || fail "the document was not kept: $(ls queued)"
    tail -n 1 queued/Document.ps | grep -qx '%%EOF' || fail "the kept document is not whole"
    tail -n 1 messages | grep -q '^zelprint: the print queue .*queued/Document.ps' ||
        fail "the last line does not say what has happened and where the document is"
}

if [ "$state" != up ]; then
    print queued --queue
    expectKept
    exit 0
fi

# The same pages into a file and to the queue. The documents differ in the time at which they were made.
print hot
[ "$status" -eq 0 ] || fail "printing into a file failed with $status"
for job in 1 2; do
    print queued --queue
    [ "$status" -eq 0 ] || fail "printing to the queue failed with $status"
    [ -z "$(ls -A queued)" ] || fail "files are left: $(ls -A queued)"
    tries=0
    until [ -e "$ZEL_QUEUE/$job" ]; do
        tries=$((tries + 1))
        [ "$tries" -lt 3000 ] || fail "job $job has not been printed"
        sleep 0.1
    done
    for document in hot/Document.ps "$ZEL_QUEUE/$job"; do
        [ "$(grep -ac '^%%CreationDate: ' "$document")" -eq 1 ] || fail "no date in $document"
    done
    sed 's/^%%CreationDate: .*/%%CreationDate:/' hot/Document.ps >expected
    sed 's/^%%CreationDate: .*/%%CreationDate:/' "$ZEL_QUEUE/$job" | cmp - expected || fail "the printed bytes differ"
done

# A document that lost bytes on its way to the disk, its end or some in the middle, is no job for a printer.
size=$(wc -c <hot/Document.ps)
# (A blank ends a path in LD_PRELOAD, so the library's folder is told apart from its name.)
for at in 100000 $((size - 3)); do
    status=0
    LD_LIBRARY_PATH=${4%/*} LD_PRELOAD=${4##*/} ZEL_FAULT=short-write ZEL_FAULT_PATH=/Document.ps ZEL_FAULT_AT=$at ASAN_OPTIONS=verify_asan_link_order=0 \
        "$zelprint" --quiet --hot-folder queued -t Document --queue "$picture" >messages 2>&1 || status=$?
    [ "$status" -eq 3 ] || fail "exit status $status instead of 3 for a document without byte $at"
    [ -z "$(ls -A queued)" ] || fail "files are left: $(ls -A queued)"
    [ "$(lpstat -W all -o | wc -l)" -eq 2 ] || fail "the queue got a document without byte $at"
done

# The scheduler goes down between two jobs.
kill "$ZEL_CUPS_PID"
while kill -0 "$ZEL_CUPS_PID" 2>/dev/null && [ "$(cat "/proc/$ZEL_CUPS_PID/comm" 2>/dev/null)" = cupsd ]; do sleep 0.1; done
print queued --queue
expectKept
