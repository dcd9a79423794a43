#!/bin/sh
# without-lpr.sh COMMAND...: runs a command that finds no print command at /usr/bin/lpr. Exits 77 where the
# system does not let us hide it.
if [ ! -e /usr/bin/lpr ]; then exec "$@"; fi
hide='mount --bind /dev/null /usr/bin/lpr && [ ! -f /usr/bin/lpr ]'
for how in "unshare --mount" "unshare --user --map-root-user --mount"; do
    if $how sh -c "$hide" 2>/dev/null; then exec $how sh -c "$hide"' && exec "$@"' sh "$@"; fi
done
echo "/usr/bin/lpr cannot be hidden here" >&2
exit 77
