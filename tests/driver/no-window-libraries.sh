#!/bin/sh
# no-window-libraries.sh BUNDLE_EXECUTABLE MODULE: the driver itself asks for no library of windows, which a
# job without a dialog would load in vain; the module with the dialogs does, and exports one function.
needed() { readelf -d "$1" | grep NEEDED; }
status=0
if needed "$1" | grep -E 'gnustep-gui|libX|cairo|fontconfig'; then
    echo "$1 loads them in every job" >&2
    status=1
fi
needed "$2" | grep -q gnustep-gui || { echo "$2 is not where the windows are" >&2; status=1; }
exported=$(nm -D --defined-only "$2" | awk '{ print $NF }')
[ "$exported" = ZELDialogFunctions ] || { echo "$2 exports $exported" >&2; status=1; }
exit $status
