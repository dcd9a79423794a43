#!/bin/bash
# package.sh PROJECT: the package is built, names no folder of the builder's, is installed into a bare root, prints,
# serves print queues, replaces an older version, and leaves nothing when it is removed. Ends with 77 (skipped)
# where no root can be made.
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
finish() {
    [ -z "${making:-}" ] || wait "$making" 2>/dev/null || true
    umount "$root/proc" 2>/dev/null || true
    rm -rf --one-file-system "$work"
}
trap finish EXIT
fail() { echo "$1" >&2; exit 1; }
inside() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 HOME=/root DEBIAN_FRONTEND=noninteractive "$@"; }
size() { du -smx --exclude=proc --exclude=var/cache --exclude=var/lib/apt "$root" | cut -f 1; }

# What waits for the network needs few processors, and what compiles needs no network.
debootstrap --variant=minbase bookworm "$root" "$mirror" >"$work/log" 2>&1 &
making=$!
git clone -q "$project" "$work/a folder with ü"
"$work/a folder with ü/scripts/package.sh" "$work/packages"
wait "$making" || { tail -n 5 "$work/log"; making=; exit 77; }
making=

package=$(echo "$work"/packages/zelprint_*.deb)
contents=$(dpkg-deb --contents "$package" | awk '{ print $6, $3 }')
echo "$contents"
for file in usr/bin/zelprint usr/lib/cups/backend/zelprint usr/share/man/man1/zelprint.1.gz \
    usr/share/man/man1/zelprint-queue.1.gz usr/share/zsh/vendor-completions/_zelprint \
    usr/share/bash-completion/completions/zelprint usr/share/applications/zelprint.desktop \
    usr/share/doc/zelprint/copyright usr/share/doc/zelprint/changelog.gz; do
    grep -q "^\./$file " <<<"$contents" || fail "it lacks $file"
done

mount -t proc proc "$root/proc"
cp /etc/apt/sources.list "$root/etc/apt/" 2>/dev/null || true
cp -r /etc/apt/sources.list.d /etc/apt/apt.conf.d /etc/apt/trusted.gpg.d "$root/etc/apt/"
cp "$work"/packages/*.deb "$project/samples/photograph.jpg" "$project/samples/page.pdf" "$project/bench/a4-600dpi.ppd" "$root/srv/"

# An older version with a file that this one has no more.
dpkg-deb -R "$package" "$work/older"
! grep -rF "$work" "$work/older" || fail "files name the folder that they were built in"
sed -i 's/^Version: .*/Version: 0.9-1/' "$work/older/DEBIAN/control"
echo old >"$work/older/usr/share/doc/zelprint/old"
dpkg-deb -b "$work/older" "$root/srv/older.deb" >/dev/null

before=$(size)
inside apt-get update >"$work/log" 2>&1 &&
    inside apt-get install -y --no-install-recommends /srv/older.deb >>"$work/log" 2>&1 || { tail "$work/log"; fail "it cannot be installed"; }
megabytes=$(($(size) - before))
echo "installed: $megabytes MB"
[ "$megabytes" -lt 350 ] || fail "it brings more than documents are printed with"
inside sh -c 'command -v gcc clang' && fail "a compiler came with it"
inside zelprint defaults --colour-space gray || fail "no defaults can be saved"
inside sh -c 'apt-get install -y --no-install-recommends /srv/zelprint_*.deb' >>"$work/log" 2>&1 || { tail "$work/log"; fail "it cannot replace an older version"; }
[ ! -e "$root/usr/share/doc/zelprint/old" ] || fail "a file of the older version stays"
grep -q '"colour_space": "gray"' <<<"$(inside zelprint defaults --json)" || fail "the user's defaults are gone after an upgrade"

mkdir "$root/srv/hot"
for file in photograph.jpg page.pdf; do
    inside zelprint --quiet --hot-folder /srv/hot "/srv/$file" || fail "it does not print $file"
done
for file in "$root"/srv/hot/*.ps; do
    [ "$(tail -n 1 "$file")" = "%%EOF" ] || fail "${file##*/} is not complete"
done
[ "$(ls "$root/srv/hot")" = "$(printf 'page.ps\nphotograph.ps')" ] || fail "the folder holds: $(ls "$root/srv/hot")"
inside zelprint --help >/dev/null || fail "no help"

# What a print queue runs, as the print system's user and without its scheduler.
inside zelprint queue press --ppd /srv/a4-600dpi.ppd --print-ppd >"$root/srv/queue.ppd" || fail "it makes no queue's PPD file"
inside chown lp /srv/hot
inside setpriv --reuid=lp --regid=lp --clear-groups env DEVICE_URI=zelprint:/srv/hot PPD=/srv/queue.ppd TMPDIR=/tmp \
    CONTENT_TYPE=application/pdf /usr/lib/cups/backend/zelprint 1 somebody "A job" 1 "" /srv/page.pdf 2>"$work/log" ||
    { cat "$work/log"; fail "the backend of print queues does not print"; }
[ -f "$root/srv/hot/A job.ps" ] || fail "after a queue's job the folder holds: $(ls "$root/srv/hot")"

inside sh -c 'dpkg -i /srv/zelprint_*.deb' >/dev/null || fail "it cannot be installed again"
inside zelprint --version >/dev/null || fail "it does not work after it was installed again"
inside sh -c 'dpkg -P zelprint' >/dev/null || fail "it cannot be removed"
left=$(inside sh -c 'find / -xdev -path /proc -prune -o -path /root -prune -o -path /srv -prune -o \( -iname "*zelprint*" -o -name zel \) -print')
[ -z "$left" ] || fail "it leaves: $left"
