#!/bin/bash
# print-queues.sh CMAKE BUILD_FOLDER [JOBS]: what clients send to queues in front of hot folders lies in them
# afterwards, whole and in its place. JOBS small jobs of several clients at the end
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
check "a missing PPD file is told" sh -c '"$0" queue gone --ppd "$1/gone.ppd" --hot-folder "$1/one" 2>&1 | grep -q "gone.ppd: No such file"' "$zelprint" "$work"
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

# --- clients that send their pages as pictures, as phones do: the same queue of theirs, told to know nothing else
sed /1200dpi/d "$work/press.ppd" >"$work/coarse.ppd"
folder coarse
"$zelprint" queue coarse --ppd "$work/coarse.ppd" --hot-folder "$work/coarse" --share >/dev/null
for type in urf pwg-raster; do
    export CUPS_SERVER=$address
    check "a client for $type is made" until_true 60 lpadmin -p "$type" -m everywhere -v "ipp://$near/printers/coarse" -E
    until_true 60 test -s "$work/b/etc/ppd/$type.ppd" # the server asks the other one in the background
    LC_ALL=C sed "/^[*]cupsFilter2:/d; s#^[*]CloseUI: [*]PageSize#&\\
*cupsFilter2: \"image/$type image/$type 0 -\"#" "$work/b/etc/ppd/$type.ppd" >"$work/$type.ppd"
    lpadmin -p "$type" -v "ipp://$near/printers/coarse" -P "$work/$type.ppd" -E 2>/dev/null
    lp -d "$type" -t "$type" "$work/doc.pdf" >/dev/null
    export CUPS_SERVER=$near
    check "pages as $type arrive" until_true 120 test -e "$work/coarse/$type.ps"
    check "they were sent as $type" says "$work/a/log/error" "CONTENT_TYPE=image/$type"
    check "all of them, as $type" pages "$work/coarse/$type.ps" 3
    check "$type lies in its place" in_place "$work/coarse/$type.ps"
done

# --- many jobs of many clients in two queues
senders=() SECONDS=0
for client in 1 2 3 4 5 6 7 8; do
    for ((job = 0; job < jobs / 8; ++job)); do
        [ $(((client + job) % 2)) -eq 0 ] && name=one || name=two
        lp -d $name -t "c$client-$job" -o Resolution=150dpi -o PageSize=Custom.40x40mm "$work/doc.jpg" >/dev/null
    done &
    senders+=($!)
done
wait "${senders[@]}"
[ "$jobs" -le 40 ] || echo "$jobs jobs were taken after $SECONDS s" >&2
check "all are printed" until_true 600 idle one two
[ "$jobs" -le 40 ] || echo "and printed after $SECONDS s" >&2
check "once each" test "$(find "$work/one" "$work/two" -name 'c*.ps' | wc -l)" -eq $((jobs / 8 * 8))
for name in one two; do
    ls -tr "$work/$name" | sed 's/\.ps$//' >"$work/$name.seen"
    sed -n "s/^$name .* \(c[0-9]*-[0-9]*\) .*/\1/p" "$work/a/log/page" >"$work/$name.sent"
    check "in order: $name" cmp "$work/$name.seen" "$work/$name.sent"
done

[ $failures -eq 0 ]
