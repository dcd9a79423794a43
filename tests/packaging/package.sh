#!/bin/bash
# package.sh PROJECT: the package is built, installed into a bare root, prints, is installed again, and leaves
# nothing when it is removed. Ends with 77 (skipped) where no root can be made.
set -euo pipefail
project=$1
[ "$(id -u)" -eq 0 ] || { echo "a bare root can be made by root only"; exit 77; }
# Mounts of our own, gone with us: programs find their libraries with the help of /proc.
if [ -z "${ZEL_PACKAGE_INSIDE:-}" ]; then
    unshare --mount true 2>/dev/null || { echo "mounts of its own are not permitted"; exit 77; }
    ZEL_PACKAGE_INSIDE=1 exec unshare --mount "$0" "$@"
fi
command -v debootstrap >/dev/null || { echo "there is no debootstrap"; exit 77; }
mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 2>/dev/null | head -n 1)
[ -n "$mirror" ] || { echo "apt knows no archive"; exit 77; }

work=$(mktemp -d)
root=$work/root
finish() { umount "$root/proc" 2>/dev/null || true; rm -rf --one-file-system "$work"; }
trap finish EXIT
fail() { echo "$1" >&2; exit 1; }
inside() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 HOME=/root DEBIAN_FRONTEND=noninteractive "$@"; }

git clone -q "$project" "$work/zel"
"$work/zel/scripts/package.sh" "$work/packages"
debootstrap --variant=minbase bookworm "$root" "$mirror" >"$work/log" 2>&1 || { tail -n 5 "$work/log"; exit 77; }
mount -t proc proc "$root/proc"
cp /etc/apt/sources.list "$root/etc/apt/" 2>/dev/null || true
cp -r /etc/apt/sources.list.d /etc/apt/apt.conf.d /etc/apt/trusted.gpg.d "$root/etc/apt/"
cp "$work"/packages/*.deb "$project/samples/photograph.jpg" "$project/samples/page.pdf" "$root/srv/"
before=$(du -smx "$root" | cut -f 1)
inside apt-get update >"$work/log" 2>&1 &&
    inside sh -c 'apt-get install -y --no-install-recommends /srv/zelprint_*.deb' >>"$work/log" 2>&1 || { tail "$work/log"; fail "it cannot be installed"; }
echo "installed: $(($(du -smx "$root" --exclude=var/cache --exclude=var/lib/apt | cut -f 1) - before)) MB"
inside sh -c 'command -v gcc clang' && fail "a compiler came with it"

mkdir "$root/srv/hot"
for file in photograph.jpg page.pdf; do
    inside zelprint --quiet --hot-folder /srv/hot "/srv/$file" || fail "it does not print $file"
done
for file in "$root"/srv/hot/*.ps; do
    [ "$(tail -n 1 "$file")" = "%%EOF" ] || fail "${file##*/} is not complete"
done
[ "$(ls "$root/srv/hot")" = "$(printf 'page.ps\nphotograph.ps')" ] || fail "the folder holds: $(ls "$root/srv/hot")"
inside zelprint --help >/dev/null || fail "no help"

inside sh -c 'dpkg -i /srv/zelprint_*.deb' >/dev/null || fail "it cannot be installed again"
inside zelprint --version >/dev/null || fail "it does not work after it was installed again"
inside sh -c 'dpkg -P zelprint' >/dev/null || fail "it cannot be removed"
left=$(inside sh -c 'find / -xdev -path /proc -prune -o -path /root -prune -o -path /srv -prune -o \( -iname "*zelprint*" -o -name zel \) -print')
[ -z "$left" ] || fail "it leaves: $left"
