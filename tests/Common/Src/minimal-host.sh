#!/bin/sh
# minimal-host.sh PROGRAM BUNDLE: the example host of the documentation prints a ramp from black to
# white that Ghostscript shows, and explains its failures.
set -eu
unset DISPLAY
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() { echo "$1" >&2; exit 1; }

mkdir "$folder/out"
"$1" "$2" "$folder/out" 2>"$folder/messages" || fail "it does not print: $(cat "$folder/messages")"
[ "$(ls "$folder/out")" = Ramp.ps ] || fail "the folder holds: $(ls "$folder/out")"
[ "$(tail -n 1 "$folder/out/Ramp.ps")" = "%%EOF" ] || fail "Ramp.ps is not complete"
gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=pgm -r20 -sOutputFile="$folder/page.pgm" "$folder/out/Ramp.ps"
# The grey values of the middle row, at a quarter, a half and three quarters of the page.
grep -v '^#' "$folder/page.pgm" | tr -s ' \n' '\n\n' | grep . | awk '
  NR == 2 { width = $1 } NR == 3 { height = $1 }
  NR > 4 { i = NR - 5; if (int(i / width) == int(height / 2)) row[i % width] = $1 }
  END {
    for (q = 1; q <= 3; ++q) {
      grey = row[int(width * q / 4)]
      if (grey < 64 * q - 16 || grey > 64 * q + 16) { print "grey " grey " at quarter " q; exit 1 }
    }
  }' || fail "the page is not the ramp"

"$1" "$2" "$folder/missing" 2>"$folder/messages" && fail "it prints into a missing folder"
grep -q '^[a-z_]*: the folder does not exist$' "$folder/messages" || fail "no clear message"
"$1" "$folder" "$folder/out" 2>/dev/null && fail "it takes any folder for the bundle"
exit 0
