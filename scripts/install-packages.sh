#!/bin/sh
# install-packages.sh LIST...: installs the Debian packages named in packaging/packages-LIST.txt, without
# recommended extras. Packages that are there already are left alone, so a second run is quick.
set -eu
cd "$(dirname "$0")/../packaging"

missing=""
for list in "$@"; do
    for package in $(grep -v '^#' "packages-$list.txt"); do
        state=$(dpkg-query -W -f '${db:Status-Abbrev}' "$package" 2>/dev/null || true)
        case $state in ii*) ;; *) missing="$missing $package" ;; esac
    done
done
if [ -z "$missing" ]; then
    echo "== All packages are installed"
    exit 0
fi

root=""
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "As root, please: apt-get install$missing" >&2; exit 1; }
    root=sudo
fi
echo "== Installing:$missing"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
{ $root apt-get update && $root env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y --no-install-recommends $missing; } >"$log" 2>&1 </dev/null || {
    tail -n 20 "$log" >&2
    echo "The packages could not be installed." >&2
    exit 1
}
