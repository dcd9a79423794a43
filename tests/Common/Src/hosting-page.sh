#!/bin/sh
# hosting-page.sh PAGE EXAMPLE: the program in the page is the one that the tests compile.
sed -n '/^```cpp$/,/^```$/p' "$1" | sed '1d;$d' | diff - "$2" && exit 0
echo "left: the program in $1, right: $2" >&2
exit 1
