#!/bin/sh
# exported-symbols.sh BUNDLE_EXECUTABLE LIST INCLUDE_FOLDER: a host sees exactly the symbols in the list,
# and those are what the headers declare.
folder=$(mktemp -d) || exit 1
trap 'rm -rf "$folder"' EXIT
nm -D --defined-only "$1" | awk '{ print $NF }' | LC_ALL=C sort > "$folder/exported" || exit 1
# The name of a declaration stands before its first parenthesis or bracket, which may be on the next line.
grep -hv '^#' "$3"/*.h | tr '\n' ' ' | grep -oE 'ZEL_EXPORT [^;]*;' |
  sed -E 's/[[(;].*//; s/.*[ *]([A-Za-z0-9_]+) *$/\1/' | LC_ALL=C sort > "$folder/declared"
status=0
diff "$2" "$folder/exported" || { echo "left: $2, right: what $1 exports" >&2; status=1; }
diff "$folder/declared" "$folder/exported" || { echo "left: declared, right: exported" >&2; status=1; }
exit $status
