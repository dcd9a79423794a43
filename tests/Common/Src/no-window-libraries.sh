#!/bin/sh
# no-window-libraries.sh MODULE FILE...: none of the files, which a job without a dialog loads, asks for a
# library of windows; the module with the dialogs does, and exports one function.
module=$1
shift
needed() { readelf -d "$1" | grep NEEDED; }
status=0
for file in "$@"; do
    needed "$file" | grep -q libc || { echo "$file cannot be read" >&2; status=1; }
    if needed "$file" | grep -E 'gnustep-gui|libX|libxcb|cairo|fontconfig'; then
        echo "$file loads them in every job" >&2
        status=1
    fi
done
needed "$module" | grep -q gnustep-gui || { echo "$module is not where the windows are" >&2; status=1; }
exported=$(nm -D --defined-only "$module" | awk '{ print $NF }')
[ "$exported" = ZELDialogFunctions ] || { echo "$module exports $exported" >&2; status=1; }
exit $status
