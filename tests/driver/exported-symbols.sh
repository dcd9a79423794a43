#!/bin/sh
# exported-symbols.sh BUNDLE_EXECUTABLE LIST: a host sees exactly the symbols in the list.
symbols=$(nm -D --defined-only "$1" | awk '{ print $NF }' | LC_ALL=C sort) || exit 1
echo "$symbols" | diff "$2" - && exit 0
echo "left: $2, right: what $1 exports" >&2
exit 1
