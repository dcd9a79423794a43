#!/bin/bash
# coverage.sh [CTEST_OPTION...]: builds the preset "coverage", runs every test (those with windows too), and prints
# which part of the lines and branches of each folder was run. Fails when a test does, and when all that is
# shipped comes to less than 95 % of its lines or 85 % of its branches. With options of ctest (-R '^units$') it
# counts what those tests run, and fails for the tests only. A list of every file is left in
# build/coverage/coverage.txt, and what llvm-cov says of each line in build/coverage/lines/.
source "$(dirname "$0")/common.sh"
need_build_folder build
scripts/install-packages.sh build test coverage
build=$PWD/build/coverage
least=(95 85)
[ $# -eq 0 ] || least=(0 0)

SECONDS=0
scripts/build.sh coverage
echo "== Built (coverage) in $(took)"
# What earlier runs have counted belongs to other programs. Backends of print queues count as another user, if root
# runs the tests: tests/host/queue/print-servers.sh.
rm -rf "$build/counts"
mkdir "$build/counts"
chmod 1777 "$build/counts"
export ZEL_COUNTS=$build/counts
SECONDS=0
echo "== Testing"
status=0
ctest --preset coverage --parallel "$(nproc)" "$@" || status=$?
echo "== Tested (coverage) in $(took)"

echo "== Counting"
counts=("$build"/counts/*.profraw)
[ -e "${counts[0]}" ] || fail "no test has left counts in build/coverage/counts"
# Files that a killed process has not finished are left out.
llvm-profdata merge -sparse -failure-mode=all -o "$build/all.profdata" "${counts[@]}" 2>"$build/profdata.log" ||
    fail "the counts cannot be read; see build/coverage/profdata.log"
# Programs and libraries: only what has a map from its counts to lines. The first one stands for itself, since
# llvm-cov takes it for a program whatever it is.
objects=()
while IFS= read -r -d '' program; do
    grep -qa __llvm_covmap "$program" || continue
    if [ ${#objects[@]} -eq 0 ]; then objects=("$program"); else objects+=(-object "$program"); fi
done < <(find "$build" -type f \( -perm -u+x -o -name '*.so*' \) ! -name '*.sh' -print0)
folders=(Common colour dialogs host platform ppd support include)
shipped=("${folders[@]/#/$PWD/}")
llvm-cov export -summary-only -instr-profile "$build/all.profdata" "${objects[@]}" "${shipped[@]}" \
    >"$build/coverage.json" 2>"$build/cov.log" || fail "the counts cannot be shown; see build/coverage/cov.log"
rm -rf "$build/lines"
llvm-cov show -show-branches=count -format=text -output-dir "$build/lines" -instr-profile "$build/all.profdata" \
    "${objects[@]}" "${shipped[@]}" >/dev/null 2>>"$build/cov.log" || fail "see build/coverage/cov.log"
python3 -B scripts/coverage-table.py "$PWD" "${least[@]}" "$build/coverage.txt" "${folders[@]}" <"$build/coverage.json" || status=1
exit "$status"
