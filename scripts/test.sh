#!/bin/sh
# test.sh [PRESET]: builds everything and runs every test. Presets: ci (the default: release with warnings
# as errors and clang-tidy), release, debug, asan, tsan. Needs no display and no print server: the tests
# start their own. Pictures and files that tests leave to look at are in build/PRESET/test-output.
set -eu
cd "$(dirname "$0")/.."
preset=${1:-ci}
scripts/install-packages.sh build test
if [ "$preset" = ci ]; then scripts/check-format.sh; fi
scripts/build.sh "$preset"
echo "== Testing"
exec ctest --test-dir "build/$preset" --output-on-failure --parallel "$(nproc)" \
    --no-tests=error --no-label-summary
