#!/bin/sh
# manuals.sh DOCS: manual pages have no mistakes, and those that they send people to are there or another's.
failed=0 seen=0
cd "$1" || exit 1
for page in *.1; do
    seen=$((seen + 1))
    mandoc -T lint -W style "$page" || failed=1
    for section in SYNOPSIS DESCRIPTION OPTIONS "EXIT STATUS" ENVIRONMENT FILES EXAMPLES "SEE ALSO"; do
        grep -qx "\.SH $section" "$page" || { echo "$page has no section $section" >&2; failed=1; }
    done
    for other in $(sed -nE 's/^\.BR (zelprint[^ ]*) \(1\).*/\1/p' "$page" | sed 's/\\-/-/g'); do
        [ -f "$other.1" ] || { echo "$page sends people to $other(1), which is not there" >&2; failed=1; }
    done
done
[ "$seen" -ge 6 ] || { echo "there are $seen manual pages only" >&2; failed=1; }
exit $failed
