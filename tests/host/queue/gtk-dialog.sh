#!/bin/bash
# gtk-dialog.sh CMAKE BUILD_FOLDER: a person prints from a GTK program, by clicks in its dialog: the queue's choices
# are shown, and what is chosen counts for the document in the hot folder. Run inside run-xvfb.sh. PICTURES, when
# set, is a folder for pictures of the dialog's tabs.
command -v xdotool >/dev/null || { echo "xdotool is not installed" >&2; exit 77; }
here=$(cd "$(dirname "$0")" && pwd)
. "$here/print-servers.sh" "$1" "$2"
places=$work/places

# A line "X Y TEXT" of what can be clicked
place() { grep -m 1 -xE "[0-9]+ [0-9]+ $1" "$places"; }
click() { # TEXT
    until_true 60 place "$1" || { echo "not shown: $1" >&2; cat "$places" >&2; kill "$program" 2>/dev/null; exit 1; }
    # Menus and tabs move while they open.
    local at=
    until [ "$(place "$1")" = "$at" ]; do at=$(place "$1"); sleep 0.5; done
    read -r x y _ <<<"$at"
    xdotool mousemove "$x" "$y" click 1
}
shows() { check "the dialog shows $1" until_true 20 place "$1"; }
picture() { [ -z "${PICTURES:-}" ] || { sleep 1; import -window root "$PICTURES/$1.png"; }; }
open_dialog() {
    rm -f "$places"
    /usr/bin/python3 "$here/gtk-print.py" "$places" 2>"$work/log" &
    program=$!
    until_true 60 test -s "$places" || {
        wait "$program"
        status=$?
        cat "$work/log" >&2
        exit "$status"
    }
    click press
}
print_it() { # the document is $work/press/$1
    click Print
    wait "$program"
    check "the program has printed" [ $? -eq 0 ]
    check "$1 arrives" until_true 120 whole "$work/press/$1"
    check "the queue is done" until_true 60 idle press
}

display=$DISPLAY
unset DISPLAY CUPS_SERVER
server a
export CUPS_SERVER=$address
folder press
profile=$(find /usr/share/color /usr/share/ghostscript -name default_cmyk.icc | head -n 1)
(umask 022 && "$zelprint" make-separation --system --to "$profile" "Zeitung äöü" >/dev/null)
queue press press --separation "Zeitung äöü" --info "Press, coated" >/dev/null || exit 1
# The dialog opens with this printer, wherever its list has been scrolled to.
lpadmin -d press
export DISPLAY=$display
if command -v openbox >/dev/null; then
    openbox >/dev/null 2>&1 &
    servers+=($!)
fi

open_dialog
picture general
click "Page Setup"
shows "chosen: A4"
picture page
click "Image Quality"
shows Resolution:
click "chosen: 300 dpi"
click "150 dpi"
picture resolution
click Advanced
for text in "Colour Space:" "File Format:" Separation: "Scaling of Pictures:" "Rotation on the Media:"; do shows "$text"; done
# Without an English locale the system names it in ASCII.
click "chosen: Zeitung (äöü|[?]{3})"
click Standard
picture advanced
print_it "from a GTK program.ps"
cd "$work/press" || exit 1
check "both pages" pages "from a GTK program.ps" 2
check "the frame is in its place" in_place "from a GTK program.ps"
# GTK puts each page into a transparency group of RGB, which the renderer separates by a coarser table.
INK_TOLERANCE=8 check "the screen's cyan is cyan ink" plates_are "from a GTK program.ps" 255 0 0 0
check "the resolution is the chosen one" says "from a GTK program.ps" '/HWResolution \[150 150\]'

open_dialog
click Advanced
click "chosen: CMYK"
click Gray
click "chosen: PostScript"
click "EPS, one file a page"
print_it "from a GTK program.eps"
check "the second page as well" until_true 60 whole "from a GTK program_p02.eps"
check "in gray" says "from a GTK program.eps" '/DeviceGray setcolorspace'
check "nothing else" holds press 3
[ $failures -eq 0 ]
