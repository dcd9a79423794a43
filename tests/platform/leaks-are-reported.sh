#!/bin/sh
# leaks-are-reported.sh PROGRAM: that one forgotten object of each kind fails a test, whatever the suppressions
# leave out, and that nothing else does.
program=$1
report=$(mktemp)
trap 'rm -f "$report"' EXIT
failures=0

failed() { # MESSAGE
    echo "FAILED: $1" >&2
    cat "$report" >&2
    failures=1
}

"$program" nothing >"$report" 2>&1 || failed "nothing was forgotten, but something is reported"
for kind in string array dictionary number url data; do
    "$program" "$kind" >"$report" 2>&1
    status=$?
    [ "$status" -ne 0 ] || failed "a forgotten $kind ends with status 0"
    grep -q 'SUMMARY: AddressSanitizer: .* leaked' "$report" || failed "a forgotten $kind is not reported"
done
exit "$failures"
