#!/bin/sh
# run-fuzzer.sh FUZZER SEEDS: fuzzes for a fixed number of seconds, starting from a copy of the seeds.
set -e
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -r "$2" "$work/corpus"
cd "$work"
"$1" -max_total_time="${ZEL_FUZZ_SECONDS:-10}" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 corpus
