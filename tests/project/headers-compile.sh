#!/bin/sh
# headers-compile.sh COMPILER SOURCE_ROOT: every header that a host includes compiles on its own, as
# plain C and as C++, without a warning.
compiler=$1 root=$2 failed=0 seen=0
try() {
  language=$1 standard=$2 header=$3
  if ! echo "#include \"$header\"" | "$compiler" -x "$language" "-std=$standard" -Wall -Wextra \
      -Wpedantic -Werror -fsyntax-only -I"$root/include" -I"$root/platform/include" - ; then
    echo "$header does not compile as $standard" >&2
    failed=1
  fi
}
for path in "$root"/include/*.h; do
  seen=$((seen + 1))
  try c c11 "${path##*/}"
  try c++ c++20 "${path##*/}"
done
[ "$seen" -gt 0 ] || { echo "no header found in $root/include" >&2; exit 1; }
exit $failed
