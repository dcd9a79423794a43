#!/bin/bash
# install-packages.sh LIST...: installs the Debian packages named in packaging/packages-LIST.txt, without
# recommended extras. Packages that are there already are left alone, so a second run is quick.
source "$(dirname "$0")/common.sh"

missing=()
for list in "$@"; do
    for package in $(grep -v '^#' "packaging/packages-$list.txt"); do
        state=$(dpkg-query -W -f '${db:Status-Abbrev}' "$package" 2>/dev/null || true)
        case $state in ii*) ;; *) missing+=("$package") ;; esac
    done
done
if [ ${#missing[@]} -eq 0 ]; then
    echo "== All packages are installed"
    exit 0
fi

root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || fail "as root, please: apt-get install --no-install-recommends ${missing[*]}"
    root=(sudo)
fi
log=$(mktemp)
trap 'rm -f "$log"' EXIT

# In English, whatever the user's language: the lines are read below.
apt() { "${root[@]}" env LC_ALL=C DEBIAN_FRONTEND=noninteractive apt-get "$@" </dev/null 2>&1; }

# Keeps what apt-get says, and counts the packages as it fetches, unpacks and sets them up.
watch_packages() {
    local all=0 stage=
    local -A count=()
    while IFS= read -r line; do
        echo "$line" >&3
        case $line in
            *" newly installed, "*) [[ $line =~ ^([0-9]+)\ upgraded,\ ([0-9]+) ]] && all=$((BASH_REMATCH[1] + BASH_REMATCH[2])) ;;
            Get:*) stage=fetched ;;
            "Unpacking "*) stage=unpacked ;;
            "Setting up "*) stage="set up" ;;
        esac
        if [ -n "$stage" ] && [ "$all" -gt 0 ]; then
            count[$stage]=$((${count[$stage]:-0} + 1))
            report_progress "${count[$stage]}" "$all" "packages $stage"
        fi
        stage=
    done 3>>"$log"
}

echo "== Installing: ${missing[*]}"
{ apt update && apt install -y --no-install-recommends "${missing[@]}"; } | watch_packages || {
    tail -n 20 "$log" >&2
    fail "the packages could not be installed"
}
