#!/bin/sh
# run-fuzzer.sh FUZZER SEEDS [CORPUS [OPTION...]]: fuzzes from the seeds for ZEL_FUZZ_SECONDS (5), or as long as
# the options of libFuzzer say, and puts what is interesting into CORPUS, if there is one. Leaks are looked for
# afterwards, in every input of both folders.
set -e
fuzzer=$1
seeds=$2
shift 2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
if [ $# -eq 0 ]; then set -- "$work/corpus" -max_total_time="${ZEL_FUZZ_SECONDS:-5}"; fi
mkdir -p "$1"
corpus=$1
shift
cd "$work"
# A stack for every allocation, unwound through libraries without frame pointers, takes most of the time, and
# is needed only to tell our leaks from theirs. Freed memory comes back soon enough to lie in the cache still.
options=detect_leaks=0:fast_unwind_on_malloc=1:malloc_context_size=4:quarantine_size_mb=8
ASAN_OPTIONS="$ASAN_OPTIONS:$options" "$fuzzer" -detect_leaks=0 -timeout=60 -rss_limit_mb=2048 \
    -print_final_stats=1 "$@" "$corpus" "$seeds"
case "$*" in *-merge*) exit 0 ;; esac
find "$seeds" "$corpus" -type f -print0 | xargs -0 "$fuzzer" -timeout=60 "$@" -runs=1 >leaks 2>&1 || {
    tail -n 100 leaks >&2
    exit 1
}
