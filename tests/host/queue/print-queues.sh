#!/bin/bash
# print-queues.sh CMAKE BUILD_FOLDER [JOBS]: what clients send to queues in front of hot folders lies in them
# afterwards, whole and in its place, and every failure is told. JOBS small jobs of several clients at the end
# (40, if not given). Run inside run-isolated.sh.
. "$(dirname "$0")/print-servers.sh" "$1" "$2"
jobs=${3:-40}

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
"$zelprint" queue x --ppd "$work/press.ppd" --separation "Zeitung äöü" --print-ppd >"$work/named.ppd"
check "names beyond ASCII are clean too" cupstestppd -q -W none "$work/named.ppd"
for language in de en; do
    check "a separation has its whole name: $language" says "$work/named.ppd" "^[*]$language[.]zelSeparation S1/Zeitung äöü: "
done
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
