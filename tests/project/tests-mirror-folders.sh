#!/bin/sh
# tests-mirror-folders.sh, in the project's folder: what tests a folder is in the folder of that name below
# tests/, and nowhere else. What tests all of them together has folders of its own.
set -eu
find tests -name CMakeLists.txt ! -path tests/CMakeLists.txt ! -path 'tests/project/*' ! -path 'tests/faults/*' \
    ! -path 'tests/soak/*' | {
    status=0
    while read -r list; do
        folder=${list#tests/}
        [ -d "${folder%/*}" ] || { echo "${list%/*}: there is no ${folder%/*} that it tests" >&2; status=1; }
    done
    exit "$status"
}
