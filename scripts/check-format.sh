#!/bin/sh
# Fails when a source file is not as clang-format lays it out; `check-format.sh --fix` rewrites them.
set -eu
cd "$(dirname "$0")/.."
mode="--dry-run --Werror"
if [ "${1:-}" = --fix ]; then mode=-i; fi
echo "== Checking the format"
find . -path './build*' -prune -o \
    \( -name '*.h' -o -name '*.cpp' -o -name '*.mm' \) -print0 | xargs -0 clang-format $mode
