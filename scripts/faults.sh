#!/bin/bash
# faults.sh [OPTION...]: makes every call of the system fail once in zelprint, in each kind of job, and looks
# at what becomes of the document; of allocations 400 in each job. A table at the end. Takes half an hour on
# two cores. What follows goes to tests/faults/fault_loops.py, such as --job pdf or --memory 0.
source "$(dirname "$0")/common.sh"
need_build_folder build
scripts/install-packages.sh build test
scripts/build.sh debug zelprint ZELPostscript zelprint_images zel_system_faults
echo "== Failing"
exec tests/run-isolated.sh python3 -B tests/faults/fault_loops.py build/debug/zelprint \
    build/debug/tests/faults/libzel_system_faults.so "$@"
