#!/bin/bash
# print-servers.sh CMAKE BUILD_FOLDER: sourced by the tests of print queues. Print servers of our own, on the
# loopback interface, with the backend and zelprint as they are installed; documents to print; and questions about
# what arrived. As root, filters and backends run as lp, as on a real machine.
set -u
PATH=$PATH:/usr/sbin:/sbin
command -v cupsd >/dev/null || { echo "cupsd is not installed" >&2; exit 1; }
. "$(dirname "${BASH_SOURCE[0]}")/../../cups-scheduler.sh"
work=$HOME/queues
mkdir "$work"
chmod 0755 "$HOME" "$work" # for lp
export TMPDIR=$work
"$1" --install "$2" --prefix "$work/installed" >"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }
zelprint=$work/installed/bin/zelprint
export ZEL_SYSTEM_LIBRARY=$work/library

servers=() failures=0
finish() {
    trap - EXIT
    [ ${#servers[@]} -eq 0 ] || kill "${servers[@]}" 2>/dev/null
    wait
}
trap finish EXIT
trap 'exit 130' HUP INT TERM

check() { # TEXT COMMAND...
    local text=$1
    shift
    "$@" >/dev/null 2>&1 && return
    echo "not so: $text" >&2
    failures=$((failures + 1))
}
until_true() { # SECONDS COMMAND...: limits are for hangs only
    local left=$(($1 * 5))
    shift
    until "$@" >/dev/null 2>&1; do
        left=$((left - 1))
        [ "$left" -gt 0 ] || return 1
        sleep 0.2
    done
}

server() { # NAME: makes a scheduler and starts it; sets address and pid
    local dir=$work/$1
    scheduler_folder "$dir"
    install -m 0755 /usr/lib/cups/backend/ipp "$work/installed/lib/cups/backend/zelprint" "$dir/bin/backend"
    cat >>"$dir/etc/cups-files.conf" <<CONF
SetEnv ZELPRINT $zelprint
SetEnv ZEL_SYSTEM_LIBRARY $ZEL_SYSTEM_LIBRARY
CONF
    # Sanitizers that know their exceptions no more fail every job.
    env | sed -n 's/^\([A-Z]*SAN_OPTIONS\)=/SetEnv \1 /p' >>"$dir/etc/cups-files.conf"
    # Counts of other users' runs cannot be added to.
    [ -z "${ZEL_COUNTS:-}" ] || echo "SetEnv LLVM_PROFILE_FILE $ZEL_COUNTS/queue-%2m.profraw" >>"$dir/etc/cups-files.conf"
    restart "$1"
}
restart() { # NAME: starts a scheduler that has been made; sets address and pid
    local dir=$work/$1 tries=0 port
    pid=
    while [ -z "$pid" ]; do # a free port is found by trying
        tries=$((tries + 1))
        [ "$tries" -le 20 ] || { tail -n 20 "$dir/log/error" >&2; exit 1; }
        port=$((20000 + RANDOM))
        scheduler_listens "$dir" "$port"
        cupsd -f -c "$dir/etc/cupsd.conf" -s "$dir/etc/cups-files.conf" </dev/null >"$dir/log/output" 2>&1 &
        pid=$!
        CUPS_SERVER=127.0.0.1:$port until_true 20 answers "$pid" || { kill "$pid" 2>/dev/null; pid=; }
    done
    servers+=("$pid")
    address=127.0.0.1:$port
}
answers() { kill -0 "$1" && lpstat -r; }

folder() {
    mkdir -p "$work/$1"
    # Backends run as lp for root alone; zelprint wants lp to be let in in any case.
    if [ "$(id -u)" -eq 0 ]; then chown lp:lp "$work/$1"; else chmod 0777 "$work/$1"; fi
}
queue() { # NAME FOLDER [OPTION...]
    local name=$1 to=$2
    shift 2
    "$zelprint" queue "$name" --ppd "$work/press.ppd" --hot-folder "$work/$to" --share "$@"
}

whole() { [ "$(tail -n 1 "$1")" = "%%EOF" ]; }
says() { grep -qaE -- "$2" "$1"; }
pages() { [ "$(grep -ac '^%%Page: ' "$1")" = "$2" ]; }
idle() { # of existing queues only
    local waiting
    waiting=$(lpstat -o "$@" 2>&1) && [ -z "$waiting" ]
}
told() { lpstat -l -p "$1" | grep -qE -- "$2"; }
files() { find "$work/$1" -mindepth 1 | wc -l; }
holds() { [ "$(files "$1")" -eq "$2" ]; }
in_place() { # the outer edges of the first page's frame lie 34 pt from the sheet's
    gs -q -dSAFER -dBATCH -dNOPAUSE -dLastPage=1 -sDEVICE=pgmraw -r72 -sOutputFile="$work/page.pgm" "$1" </dev/null
    python3 - "$work/page.pgm" <<'PYTHON'
import re, sys
data = open(sys.argv[1], "rb").read()
head = re.match(rb"P5\s+(?:#[^\n]*\n)*(\d+)\s+(\d+)\s+\d+\s", data)
w, h, pixels = int(head[1]), int(head[2]), data[head.end():]
columns = [x for x in range(w) if sum(pixels[y * w + x] < 128 for y in range(h)) > h / 2]
rows = [y for y in range(h) if sum(pixels[y * w + x] < 128 for x in range(w)) > w / 2]
edges = (columns[0], w - 1 - columns[-1], rows[0], h - 1 - rows[-1])
sys.exit(any(abs(edge - 34) > 1 for edge in edges))
PYTHON
}
plates_are() { # FILE C M Y K: the inks of the first page's patch, within INK_TOLERANCE (2) of 255
    gs -q -dSAFER -dBATCH -dNOPAUSE -dLastPage=1 -sDEVICE=pamcmyk32 -r72 -sOutputFile="$work/page.pam" "$1" </dev/null
    python3 - "$work/page.pam" "${@:2}" <<'PYTHON'
import os, re, sys
data = open(sys.argv[1], "rb").read()
tolerance = int(os.environ.get("INK_TOLERANCE", 2))
at = data.index(b"ENDHDR\n") + 7 + (692 * int(re.search(rb"WIDTH (\d+)", data)[1]) + 150) * 4
sys.exit(any(abs(ink - int(wanted)) > tolerance for ink, wanted in zip(data[at:at + 4], sys.argv[2:])))
PYTHON
}

cat >"$work/press.ppd" <<'PPD'
*PPD-Adobe: "4.3"
*ColorDevice: True
*LanguageLevel: "2"
*DefaultPageSize: A4
*PageSize A4/A4: "<< /PageSize [595 842] >> setpagedevice"
*PageSize A5/A5: "<< /PageSize [420 595] >> setpagedevice"
*ImageableArea A4: "12 12 583 830"
*ImageableArea A5: "12 12 408 583"
*PaperDimension A4: "595 842"
*PaperDimension A5: "420 595"
*VariablePaperSize: True
*CustomPageSize True: "pop pop pop << /PageSize [ 5 -2 roll ] >> setpagedevice"
*ParamCustomPageSize Width: 1 points 100 900
*ParamCustomPageSize Height: 2 points 100 1300
*ParamCustomPageSize WidthOffset: 3 points 0 0
*ParamCustomPageSize HeightOffset: 4 points 0 0
*ParamCustomPageSize Orientation: 5 int 0 0
*DefaultResolution: 300dpi
*Resolution 150dpi/150 dpi: "<< /HWResolution [150 150] >> setpagedevice"
*Resolution 300dpi/300 dpi: "<< /HWResolution [300 300] >> setpagedevice"
*Resolution 1200dpi/1200 dpi: "<< /HWResolution [1200 1200] >> setpagedevice"
PPD
# Three A4 sheets with a frame in black ink 36 pt from the edges, 4 pt wide, and a patch of cyan; a CMYK picture.
cat >"$work/doc.ps" <<'PS'
%!PS
<< /PageSize [595 842] >> setpagedevice 3 { 0 0 0 1 setcmykcolor 4 setlinewidth
36 36 523 770 rectstroke 1 0 0 0 setcmykcolor 100 100 100 100 rectfill showpage } repeat
PS
gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=pdfwrite -sOutputFile="$work/doc.pdf" "$work/doc.ps" </dev/null
gs -q -dSAFER -dBATCH -dNOPAUSE -dLastPage=1 -sDEVICE=jpegcmyk -r50 -sOutputFile="$work/doc.jpg" "$work/doc.ps" </dev/null
gs -q -dSAFER -dBATCH -dNOPAUSE -dLastPage=1 -sDEVICE=tiff32nc -r50 -sOutputFile="$work/doc.tif" "$work/doc.ps" </dev/null
head -c 400 "$work/doc.jpg" >"$work/cut.jpg"
echo "a line of text" >"$work/doc.txt"
