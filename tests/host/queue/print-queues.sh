#!/bin/bash
# print-queues.sh CMAKE BUILD_FOLDER [JOBS]: queues in print servers of our own, on the loopback interface, with
# the backend and zelprint as they are installed. What clients send lies in the hot folders afterwards, whole and
# in its place, and every failure is told. JOBS small jobs of several clients at the end (40, if not given). Run
# inside run-isolated.sh; as root, filters and backends run as lp, as on a real machine.
set -u
PATH=$PATH:/usr/sbin:/sbin
command -v cupsd >/dev/null || { echo "cupsd is not installed" >&2; exit 1; }
work=$HOME/queues
mkdir "$work"
chmod 0755 "$HOME" "$work" # for lp
export TMPDIR=$work
"$1" --install "$2" --prefix "$work/installed" >"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }
zelprint=$work/installed/bin/zelprint
jobs=${3:-40}
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

configure() { # PORT
    cat <<CONF
Listen 127.0.0.1:$1
LogLevel debug
Browsing Off
WebInterface No
DefaultAuthType None
IdleExitTimeout 0
<Location />
  Order allow,deny
  Allow all
</Location>
<Policy default>
  JobPrivateValues none
  <Limit All>
    Order deny,allow
    Allow all
  </Limit>
</Policy>
CONF
}

server() { # NAME: starts a scheduler; sets address and pid
    local dir=$work/$1 tries=0 port part
    mkdir -p "$dir"/{etc,bin/backend,spool/tmp,cache,state,log}
    for part in cgi-bin daemon driver filter monitor notifier; do ln -s "/usr/lib/cups/$part" "$dir/bin/$part"; done
    install -m 0755 /usr/lib/cups/backend/ipp "$work/installed/lib/cups/backend/zelprint" "$dir/bin/backend"
    cat >"$dir/etc/cups-files.conf" <<CONF
ServerRoot $dir/etc
ServerBin $dir/bin
RequestRoot $dir/spool
TempDir $dir/spool/tmp
CacheDir $dir/cache
StateDir $dir/state
AccessLog $dir/log/access
ErrorLog $dir/log/error
PageLog $dir/log/page
SetEnv ZELPRINT $zelprint
SetEnv ZEL_SYSTEM_LIBRARY $ZEL_SYSTEM_LIBRARY
CONF
    pid=
    while [ -z "$pid" ]; do # a free port is found by trying
        tries=$((tries + 1))
        [ "$tries" -le 20 ] || { tail -n 20 "$dir/log/error" >&2; exit 1; }
        port=$((20000 + RANDOM))
        configure "$port" >"$dir/etc/cupsd.conf"
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
    [ "$(id -u)" -ne 0 ] || chown lp:lp "$work/$1"
}
queue() { # NAME FOLDER [OPTION...]
    local name=$1 to=$2
    shift 2
    "$zelprint" queue "$name" --ppd "$work/press.ppd" --hot-folder "$work/$to" --share "$@"
}

whole() { [ "$(tail -n 1 "$1")" = "%%EOF" ]; }
says() { grep -qaE -- "$2" "$1"; }
pages() { [ "$(grep -ac '^%%Page: ' "$1")" = "$2" ]; }
idle() { [ -z "$(lpstat -o "$@" 2>/dev/null)" ]; }
told() { lpstat -l -p "$1" | grep -q -- "$2"; }
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
plates_are() { # FILE C M Y K: the inks of the first page's patch, within 2 of 255
    gs -q -dSAFER -dBATCH -dNOPAUSE -dLastPage=1 -sDEVICE=pamcmyk32 -r72 -sOutputFile="$work/page.pam" "$1" </dev/null
    python3 - "$work/page.pam" "${@:2}" <<'PYTHON'
import re, sys
data = open(sys.argv[1], "rb").read()
at = data.index(b"ENDHDR\n") + 7 + (692 * int(re.search(rb"WIDTH (\d+)", data)[1]) + 150) * 4
sys.exit(any(abs(ink - int(wanted)) > 2 for ink, wanted in zip(data[at:at + 4], sys.argv[2:])))
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

unset DISPLAY CUPS_SERVER
server a
near=$address scheduler=$pid
export CUPS_SERVER="$near"

# --- the queues
for name in press eps one two; do folder $name; done
check "the backend is found" sh -c 'lpinfo -v | grep -q "^direct zelprint$"'
for name in press one two; do check "the queue $name is made" queue $name $name; done
check "a queue for EPS is made" queue eps eps --eps --info "Press, EPS"
check "an unknown separation is refused" sh -c '! "$0" queue news --ppd "$1" --hot-folder "$2/one" --separation "Zeitung äöü" 2>/dev/null' "$zelprint" "$work/press.ppd" "$work"
profile=$(find /usr/share/color /usr/share/ghostscript -name default_cmyk.icc | head -n 1)
(umask 022 && "$zelprint" make-separation --system --to "$profile" "Zeitung äöü" >/dev/null)
folder news
check "a queue with a separation is made" queue news news --separation "Zeitung äöü"
check "a missing folder is refused" sh -c '! "$0" queue gone --ppd "$1" --hot-folder "$2/gone" 2>/dev/null' "$zelprint" "$work/press.ppd" "$work"
"$zelprint" queue x --ppd "$work/press.ppd" --print-ppd >"$work/queue.ppd"
check "the queue's PPD file is clean" cupstestppd -q -W none "$work/queue.ppd"
check "its printer is the same" python3 - "$zelprint" "$work/press.ppd" "$work/queue.ppd" <<'PYTHON'
import json, subprocess, sys
def model(path):
    text = subprocess.run([sys.argv[1], "printer-info", path, "--json"], stdout=subprocess.PIPE, check=True).stdout
    return {key: value for key, value in json.loads(text).items() if key != "name"}
sys.exit(model(sys.argv[2]) != model(sys.argv[3]))
PYTHON
check "our options are shown" sh -c 'lpoptions -p press -l | grep -q "^zelSeparation/Separation: \*Standard$"'
check "the page sizes are shown" sh -c 'lpoptions -p press -l | grep -q "^PageSize/Page Size: \*A4 A5 Custom.WIDTHxHEIGHT$"'

# --- what arrives
print() { lp -d press "$@" >/dev/null; }
print -t pdf "$work/doc.pdf"
print -t ps "$work/doc.ps"
print -t text "$work/doc.txt"
print -n 2 -t jpg "$work/doc.jpg"
print -t tif "$work/doc.tif"
print -n 2 -P 2-3 -t range "$work/doc.pdf"
print -o number-up=2 -t nup "$work/doc.pdf"
print -o landscape -t land "$work/doc.pdf"
print -o PageSize=Custom.50x60mm -t custom "$work/doc.pdf"
print -o print-color-mode=monochrome -t mono "$work/doc.pdf"
print -o zelFormat=EPS -t eps "$work/doc.pdf"
print -t two "$work/doc.pdf" "$work/doc.jpg"
lpr -P press -T lpr "$work/doc.pdf"
gs -q -dSAFER -dBATCH -dNOPAUSE -dLastPage=1 -sDEVICE=jpeg -r50 -sOutputFile="$work/rgb.jpg" "$work/doc.ps" </dev/null
lp -d news -t separated "$work/rgb.jpg" >/dev/null
check "the queue is done" until_true 300 idle press
cd "$work/press" || exit 1
for name in pdf ps text jpg tif range nup land custom mono two two_01 lpr; do check "$name is whole" whole $name.ps; done
for name in pdf ps land; do check "$name lies in its place" in_place $name.ps; done
for name in pdf jpg tif; do check "$name has its inks" plates_are $name.ps 255 0 0 0; done
check "a PDF has its pages" pages pdf.ps 3
check "two pages on one are two sheets" pages nup.ps 2
check "the range is printed twice" pages range.ps 4
check "a picture is printed twice" pages jpg.ps 2
check "a custom page has its size" says custom.ps '^%%HiResBoundingBox: 0(\.0*)? 0(\.0*)? 141\.[67][0-9]* 170\.[01]'
check "black and white is gray" says mono.ps '/DeviceGray setcolorspace'
check "three EPS files" test -e eps.eps -a -e eps_p02.eps -a -e eps_p03.eps
check "nothing else" holds press 16
check "others may read them" sh -c 'test "$(stat -c %a pdf.ps)" = 664'
cd "$work" || exit 1
check "a separation for the machine is used" until_true 120 test -e news/separated.ps
check "it is not the built-in one" sh -c '! cmp -s "$0" "$1"' news/separated.ps "$work/press/jpg.ps"

# --- failures
print -t cut "$work/cut.jpg"
check "a damaged picture is told" until_true 60 told press damaged
check "a damaged picture is cancelled" until_true 60 idle press
lpadmin -p gone -v "zelprint:$work/gone" -P "$work/queue.ppd" -E 2>/dev/null
lp -d gone -t late "$work/doc.pdf" >/dev/null
check "a missing folder is told" until_true 60 told gone 'is not there'
folder gone
sed 's/^\*DefaultzelSeparation: .*/*DefaultzelSeparation: Lost/; s/^\*zelSeparation Standard.*/&\n*zelSeparation Lost\/Lost: ""/; s/^\*zelSeparationName Standard.*/&\n*zelSeparationName Lost: "No such"/' "$work/queue.ppd" >"$work/lost.ppd"
lpadmin -p lost -v "zelprint:$work/one" -P "$work/lost.ppd" -E 2>/dev/null
lp -d lost -t held "$work/doc.pdf" >/dev/null
check "an unknown separation is told" until_true 60 told lost 'no separation called "No such"'
check "its job is held" until_true 20 sh -c 'lpstat -l -o lost | grep -q job-hold-until-specified'
cancel -a lost
print -t cancelled -o Resolution=1200dpi -n 20 "$work/doc.pdf"
check "a job to cancel begins" until_true 60 sh -c 'ls -A "$0" "$0/press" | grep -q "^\.zelprint"' "$work"
cancel -a press
check "cancelling leaves nothing" until_true 60 holds press 16
check "the late job comes when the folder is there" until_true 90 test -e "$work/gone/late.ps"
check "only our queues are removed" sh -c 'lpadmin -p other -v file:/dev/null -E 2>/dev/null; ! "$0" queue --remove other 2>/dev/null' "$zelprint"
check "a queue is removed" "$zelprint" queue --remove gone
check "it is gone" sh -c '! lpstat -p gone 2>/dev/null'

# --- a queue without a driver, of another server
server b
export CUPS_SERVER=$address
check "a driverless client finds the queue" until_true 60 lpadmin -p far -m everywhere -v "ipp://$near/printers/press" -E
until_true 60 lpoptions -p far -l
lp -d far -t far -n 2 "$work/doc.pdf" >/dev/null
export CUPS_SERVER=$near
check "a driverless client prints" until_true 120 test -e "$work/press/far.ps"
check "its pages are CMYK" says "$work/press/far.ps" '/DeviceCMYK setcolorspace'
check "and in their place" in_place "$work/press/far.ps"

# --- many jobs of many clients in two queues
senders=()
for client in 1 2 3 4 5 6 7 8; do
    for ((job = 0; job < jobs / 8; ++job)); do
        [ $(((client + job) % 2)) -eq 0 ] && name=one || name=two
        lp -d $name -t "c$client-$job" -o Resolution=150dpi -o PageSize=Custom.40x40mm "$work/doc.jpg" >/dev/null
    done &
    senders+=($!)
done
wait "${senders[@]}"
check "all are printed" until_true 600 idle one two
check "once each" test "$(find "$work/one" "$work/two" -name 'c*.ps' | wc -l)" -eq $((jobs / 8 * 8))
for name in one two; do
    ls -tr "$work/$name" | sed 's/\.ps$//' >"$work/$name.seen"
    sed -n "s/^$name .* \(c[0-9]*-[0-9]*\) .*/\1/p" "$work/a/log/page" >"$work/$name.sent"
    check "in order: $name" cmp "$work/$name.seen" "$work/$name.sent"
done

# --- the scheduler dies in the middle of a job
print -t again -o Resolution=1200dpi "$work/doc.pdf"
until_true 60 pgrep -f "$zelprint .*--title=again" || true
kill -KILL "$scheduler"
check "nothing goes on without it" until_true 30 sh -c '! pgrep -f "$0 .*--title=again"' "$zelprint"
check "and no half document is there" test ! -e "$work/press/again.ps"
[ $failures -eq 0 ]
