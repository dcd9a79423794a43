#!/bin/bash
# package.sh [FOLDER]: builds the Debian packages of what is committed, checks them with lintian, and puts them
# into the folder (build/packages, if none is named). Times in them are the commit's, and no path of a folder is
# in them: the bytes are the same wherever they are built.
source "$(dirname "$0")/common.sh"
folder=${1:-build/packages}
need_build_folder build
need_writable "$folder" "name another one"
scripts/install-packages.sh build package
git rev-parse -q --verify HEAD >/dev/null 2>&1 || fail "packages are made of what is committed: clone the repository"

# Packages are built in a folder beside their sources, which has to have a debian folder.
folder=$(cd "$folder" && pwd)
work=$PWD/build/package
log=build/package.log
rm -rf "$work"
mkdir -p "$work/source"
git archive HEAD | tar -x -C "$work/source"
cp -r "$work/source/packaging/debian" "$work/source/debian"

watch_package() {
    while IFS= read -r line; do
        echo "$line" >&3
        if [[ $line =~ ^\[([0-9]+)/([1-9][0-9]*)\] ]]; then
            report_progress "${BASH_REMATCH[1]}" "${BASH_REMATCH[2]}" "steps done"
        fi
    done 3>"$log"
}

echo "== Building the packages; this takes a few minutes"
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH
(cd "$work/source" && dpkg-buildpackage -b -us -uc) 2>&1 </dev/null | watch_package || {
    tail -n 40 "$log" >&2
    fail "the packages could not be built; all of it is in $log"
}
# The packages are not made for an archive with reports of bugs.
# From within: lintian does not find files in a folder whose name has umlauts.
(cd "$work" && lintian --fail-on error,warning --suppress-tags initial-upload-closes-no-bugs \
    --tag-display-limit 0 --allow-root ./*.changes)
rm -f "$folder"/zelprint*.deb
cp "$work"/zelprint_*.deb "$work"/zelprint-dev_*.deb "$folder"
echo "== Built:"
printf '   %s\n' "$folder"/zelprint*.deb
echo "   install with: apt install $(printf '%q' "$(echo "$folder"/zelprint_*.deb)")"
