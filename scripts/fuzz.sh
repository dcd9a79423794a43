#!/bin/bash
# fuzz.sh [MINUTES]: builds every fuzzer with the address and undefined-behaviour sanitizers and runs them over all
# processors, MINUTES in all (10, unless given), from the seeds in fuzz/ and from what earlier runs have found
# interesting, which is kept in build/fuzz/corpora and boiled down at the end. Inputs that fail are kept in
# build/fuzz/findings; prints a table, and fails when there is one.
#
# fuzz.sh --programs [RUNS [PRESET]]: runs zelprint itself RUNS times (1000, unless given) with damaged pictures,
# PDFs, PPD, settings, separation and ICC files, built with the preset fuzz, or another one.
source "$(dirname "$0")/common.sh"

programs=
if [ "${1:-}" = --programs ]; then
    programs=1
    shift
fi
amount=${1:-$([ "$programs" ] && echo 1000 || echo 10)}
preset=${2:-fuzz}
[[ $amount =~ ^[1-9][0-9]*$ && $# -le 2 && ($programs || $# -le 1) ]] ||
    fail "usage: scripts/fuzz.sh [MINUTES] or scripts/fuzz.sh --programs [RUNS [PRESET]]"
need_build_folder build
scripts/install-packages.sh build test

if [ "$programs" ]; then
    scripts/build.sh "$preset" zelprint ZELPostscript zelprint_images
    exec tests/run-isolated.sh python3 -B fuzz/programs.py "$PWD/build/$preset/zelprint" "$PWD" \
        "$PWD/build/fuzz/findings/programs" "$amount" "$(nproc)"
fi

scripts/build.sh fuzz fuzz/all
place=$PWD/build/fuzz
mkdir -p "$place/corpora" "$place/findings" "$place/logs" "$place/runs"
fuzzers=("$place"/fuzz/*/*_fuzzer)
seconds=$((amount * 60 * $(nproc) / ${#fuzzers[@]}))
[ "$seconds" -ge 1 ] || seconds=1

name_of() { basename "$1" _fuzzer; }
seeds_of() { echo "$PWD/fuzz/$(basename "$(dirname "$1")")/corpus/$(name_of "$1")"; }
statistic() { # FUZZER NAME: the sum of it over all runs in the fuzzer's log
    awk -v name="stat::$2:" '$1 == name { sum += $2 } END { print sum + 0 }' "$place/logs/$(name_of "$1")"
}

# Fuzzes for $seconds, however often it ends with a finding.
fuzz() { # FUZZER
    local name log findings end
    name=$(name_of "$1") log=$place/logs/$(name_of "$1") findings=$place/findings/$(name_of "$1")
    mkdir -p "$place/corpora/$name" "$findings"
    end=$((SECONDS + seconds))
    : >"$log"
    while [ "$SECONDS" -lt "$end" ] && [ "$(find "$findings" -type f | wc -l)" -lt 20 ]; do
        tests/run-isolated.sh fuzz/run-fuzzer.sh "$1" "$(seeds_of "$1")" "$place/corpora/$name" \
            -max_total_time=$((end - SECONDS)) -artifact_prefix="$findings/" >>"$log" 2>&1 || true
    done
    echo $(($(cat "$place/runs/$name" 2>/dev/null || echo 0) + $(statistic "$1" number_of_executed_units))) \
        >"$place/runs/$name.new"
    mv "$place/runs/$name.new" "$place/runs/$name"
    # Only inputs that reach something of their own stay.
    rm -rf "$place/corpora/$name.less"
    mkdir "$place/corpora/$name.less"
    if tests/run-isolated.sh fuzz/run-fuzzer.sh "$1" "$place/corpora/$name" "$place/corpora/$name.less" \
        -merge=1 >"$log.merge" 2>&1; then
        rm -rf "$place/corpora/$name"
        mv "$place/corpora/$name.less" "$place/corpora/$name"
    fi
}

echo "== Fuzzing: ${#fuzzers[@]} fuzzers, $seconds s each"
done=0
running=0
for fuzzer in "${fuzzers[@]}"; do
    if [ "$running" -ge "$(nproc)" ]; then
        wait -n
        running=$((running - 1)) done=$((done + 1))
        report_progress "$done" "${#fuzzers[@]}" "fuzzers have run"
    fi
    fuzz "$fuzzer" &
    running=$((running + 1))
done
wait
report_progress "${#fuzzers[@]}" "${#fuzzers[@]}" "fuzzers have run"

printf '%-20s %12s %9s %14s %9s %7s %9s\n' fuzzer runs "a second" "runs in all" edges inputs findings
findings=0
for fuzzer in "${fuzzers[@]}"; do
    name=$(name_of "$fuzzer")
    found=$(find "$place/findings/$name" -type f | wc -l)
    findings=$((findings + found))
    runs=$(statistic "$fuzzer" number_of_executed_units)
    # Nothing is said of what fails with its first input.
    edges=$(grep -oE 'cov: [0-9]+' "$place/logs/$name" | tail -n 1) || edges="cov: 0"
    printf '%-20s %12d %9d %14d %9d %7d %9d\n' "$name" "$runs" $((runs / seconds)) "$(cat "$place/runs/$name")" \
        "${edges#cov: }" "$(find "$place/corpora/$name" -type f | wc -l)" "$found"
done
[ "$findings" -eq 0 ] || fail "$findings inputs fail, which are in build/fuzz/findings; the logs are in build/fuzz/logs"
