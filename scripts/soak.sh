#!/bin/bash
# soak.sh [DOCUMENTS [JOBS [DIALOGS]]]: hosts that work for long: 100,000 small documents in one process, eight
# hosts with 100 jobs each at one hot folder that is watched, and 1,000 dialogs in one process. Tells memory,
# descriptors and threads after the first tenth and at the end; fails when they grow, or when a file is not whole.
source "$(dirname "$0")/common.sh"
need_build_folder build
scripts/install-packages.sh build test
scripts/build.sh debug zelprint ZELPostscript zelprint_images soak_documents soak_dialogs
build=$PWD/build/debug
status=0
echo "== Documents"
tests/run-isolated.sh "$PWD/tests/soak/soak-documents.sh" "$build/tests/soak/soak_documents" "$build/zelprint" \
    "${1:-100000}" || status=1
echo "== Hosts at one hot folder"
tests/run-isolated.sh python3 -B tests/soak/watched_folder.py "$build/zelprint" 8 "${2:-100}" || status=1
echo "== Dialogs"
tests/run-xvfb.sh "$build/tests/soak/soak_dialogs" "${3:-1000}" || status=1
exit $status
