#!/bin/bash
# test.sh [PRESET [CTEST_OPTION...]]: builds everything and runs every test. Presets: ci (the default: release
# with warnings as errors and clang-tidy), debug, asan, tsan. Needs no display and no print server: the tests
# start their own. Pictures and files that tests leave to look at are in build/PRESET/test-output.
source "$(dirname "$0")/common.sh"
preset=${1:-ci}
[ $# -eq 0 ] || shift
need_build_folder build
scripts/install-packages.sh build test
ctest --list-presets | grep -qF "\"$preset\"" || fail "there are no tests in the preset '$preset', but in these: $(ctest --list-presets | grep -oE '"[^"]+"' | tr -d '"\n' ' ')"
SECONDS=0
if [ "$preset" = ci ]; then scripts/check-format.sh; fi
scripts/build.sh "$preset"
echo "== Built ($preset) in $(took)"
SECONDS=0
echo "== Testing"
status=0
ctest --preset "$preset" --parallel "$(nproc)" "$@" || status=$?
echo "== Tested ($preset) in $(took)"
exit "$status"
