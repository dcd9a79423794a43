#!/bin/bash
# queue-failures.sh CMAKE BUILD_FOLDER: every failure of a print queue is told, loses nothing and leaves nothing half
# made. Run inside run-isolated.sh.
. "$(dirname "$0")/print-servers.sh" "$1" "$2"

unset DISPLAY CUPS_SERVER
server a
scheduler=$pid near=$address
export CUPS_SERVER="$near"
for name in press one late; do
    folder $name
    queue $name $name >/dev/null || exit 1
done
"$zelprint" queue x --ppd "$work/press.ppd" --print-ppd >"$work/queue.ppd"
print() { lp -d press "$@" >/dev/null; }
device() { lpadmin -p "$1" -v "$2" -P "${3:-$work/queue.ppd}" -E 2>/dev/null; }
count() { [ "$(find "$work/$1" -name "$2" | wc -l)" -eq "$3" ]; }
no_orphan() { ! pgrep -f "$zelprint .*--title=$1"; }

# --- a watched folder never shows a file that is not whole: files come by one step and are not touched again
python3 - "$work/press" "$work/watched" <<'PYTHON' &
import ctypes, os, struct, sys
libc = ctypes.CDLL(None, use_errno=True)
MODIFY, MOVED_TO, CREATE = 0x2, 0x80, 0x100
watch = libc.inotify_init()
libc.inotify_add_watch(watch, sys.argv[1].encode(), MODIFY | MOVED_TO | CREATE)
with open(sys.argv[2], "w") as seen:
    while True:
        data = os.read(watch, 65536)
        while data:
            _, mask, _, length = struct.unpack("iIII", data[:16])
            name = os.fsdecode(data[16 : 16 + length].rstrip(b"\0"))
            data = data[16 + length :]
            if not name.startswith("."):
                print("moved" if mask & MOVED_TO else "written", name, file=seen, flush=True)
PYTHON
servers+=($!)

# --- what waits by itself: a folder that is away, and a disk that is full
rmdir "$work/late"
for job in 1 2 3; do lp -d late -t "late$job" -o PageSize=Custom.40x40mm "$work/doc.pdf" >/dev/null; done
check "a missing folder is told" until_true 60 told late 'is not there'
folder shut
queue shut shut >/dev/null
chmod 0555 "$work/shut"
lp -d shut -t shut -o PageSize=Custom.40x40mm "$work/doc.pdf" >/dev/null
check "a folder that may not be written is told" until_true 60 told shut 'may not be written'
small=
mkdir "$work/small"
if [ "$(id -u)" -eq 0 ] && mount -t tmpfs -o size=4m,mode=0777 none "$work/small" 2>/dev/null; then
    small=yes
    trap 'umount -l "$work/small"; finish' EXIT
    queue small small >/dev/null
    head -c 4190000 /dev/zero >"$work/small/.filler"
    for job in 1 2 3; do lp -d small -t "small$job" -o Resolution=150dpi -o PageSize=Custom.40x40mm -P 1 "$work/doc.pdf" >/dev/null; done
    check "a full disk is told" until_true 60 sh -c 'lpstat -l -p small | grep -q "make room"'
    check "and shown as the printer's state" sh -c 'lpstat -l -p small | grep -q com.zel.hot-folder-full'
    check "nothing is there of its job" holds small 1
    # A full spool folder passes as well.
    (
        head -c 1000000 /dev/zero | TMPDIR=$work/small DEVICE_URI=zelprint:$work/press PPD=$work/queue.ppd \
            "$work/installed/lib/cups/backend/zelprint" 1 user title 1 '' 2>"$work/spool.told"
        echo $? >"$work/spool.status"
    ) &
else
    echo "not tried: a full disk (no file system can be mounted here)" >&2
fi

# --- damaged documents: cancelled with a sentence, and the next one is printed
head -c 1000 "$work/doc.pdf" >"$work/cut.pdf"
printf '%%!PS\n1 0 div showpage\n' >"$work/wrong.ps"
: >"$work/empty.pdf"
for document in cut.jpg cut.pdf wrong.ps; do
    job=$(lp -d press -t "$document" "$work/$document")
    job=${job#*is }
    job=${job%% *}
    check "$document is done with" until_true 60 idle press
    check "$document is cancelled" sh -c 'ipptool -tv "ipp://$0/jobs/$1" get-job-attributes.test | grep -q "job-state (enum) = canceled"' "$near" "${job##*-}"
    check "$document is told" told press 'damaged|cannot|could not'
done
print -t next "$work/doc.pdf"
check "the next one is printed" until_true 60 test -e "$work/press/next.ps"

# --- a separation that is not there: held, and let go when it has been made
sed 's/^\*DefaultzelSeparation: .*/*DefaultzelSeparation: Lost/; s/^\*zelSeparation Standard.*/&\n*zelSeparation Lost\/Lost: ""/; s/^\*zelSeparationName Standard.*/&\n*zelSeparationName Lost: "No such"/' "$work/queue.ppd" >"$work/lost.ppd"
device lost "zelprint:$work/one" "$work/lost.ppd"
held=$(lp -d lost -t held "$work/doc.pdf")
held=${held#*is }
held=${held%% *}
check "an unknown separation is told" until_true 60 told lost 'no separation called "No such"'
check "its job is held" until_true 20 sh -c 'lpstat -l -o lost | grep -q job-hold-until-specified'
profile=$(find /usr/share/color /usr/share/ghostscript -name default_cmyk.icc | head -n 1)
(umask 022 && "$zelprint" make-separation --system --to "$profile" "No such" >/dev/null)
lp -i "$held" -H resume
check "it is printed when the separation is there" until_true 60 test -e "$work/one/held.ps"

# --- a page that the printer does not take: held
print -t tiny -o PageSize=Custom.10x10mm "$work/doc.pdf"
check "a page too small is told" until_true 60 told press 'takes pages from'
check "a job of such a page is held" until_true 20 sh -c 'lpstat -l -o press | grep -q job-hold-until-specified'
cancel -a press

# --- queues that cannot work stop, and say why
for uri in zelprint:/ zelprint://host/folder; do
    device wrong "$uri" || continue # the print system itself may refuse it
    lp -d wrong "$work/doc.pdf" >/dev/null
    check "$uri is told" until_true 60 told wrong 'device URI must be'
    check "$uri stops the queue" until_true 20 sh -c 'lpstat -p wrong | grep -q disabled'
    lpadmin -x wrong
done

lpadmin -p bare -v "zelprint:$work/one" -m raw -E 2>/dev/null
lp -d bare -t bare "$work/doc.pdf" >/dev/null
check "a queue without a PPD file is told" until_true 60 told bare 'no PPD file'
check "and stops" until_true 20 sh -c 'lpstat -p bare | grep -q disabled'

# --- an installation that is not whole: the queue stops, says what it cannot read, and prints when that is mended
for part in "$zelprint" "$(find "$work/installed" -name ZELPostscript.bundle)"; do
    name=$(basename "$part" .bundle)
    chmod 0 "$part"
    lp -d one -t "with$name" "$work/doc.jpg" >/dev/null
    check "$name that cannot be read is told" until_true 60 told one "$name.* cannot"
    check "$name that cannot be read stops the queue" until_true 20 sh -c 'lpstat -p one | grep -q disabled'
    chmod 0755 "$part"
    cupsenable one
    check "$name that can be read again prints" until_true 60 test -e "$work/one/with$name.ps"
done

# --- odd names of folders, queues, titles and users
odd='hot & 100% "äöü" #?;$(x)'
folder "$odd"
check "a queue of an odd name is made" queue 'a.b-ü@%41' "$odd"
lp -d 'a.b-ü@%41' -t odd "$work/doc.jpg" >/dev/null
check "a folder of an odd name is filled" until_true 60 whole "$work/$odd/odd.ps"
check "such a queue is removed" "$zelprint" queue --remove 'a.b-ü@%41'
for bad in 'a b' 'a/b' 'a#b' '' '-x'; do
    check "the name '$bad' is refused" sh -c '! "$0" queue "$1" --ppd "$2/press.ppd" --hot-folder "$2/one" 2>/dev/null' "$zelprint" "$bad" "$work"
done
before=$(files one)
long=$(printf 'x%.0s' {1..900})
for title in "$long" ../../escape .hidden --help / $'two\nlines' 'ü(' '%s%n'; do lp -d one -t "$title" "$work/doc.jpg" >/dev/null; done
lp -d one -U nobody-of-this-name -t stranger "$work/doc.jpg" >/dev/null
check "the queue is done" until_true 60 idle one
check "odd titles are printed" holds one $((before + 9))
check "nobody's home is needed" test -e "$work/one/stranger.ps"
check "none hides" count one '.*' 0
check "none gets out of the folder" test ! -e "$work/../escape.ps" -a ! -e "$work/escape.ps"

# --- cancelling
print -t cancelled -o Resolution=1200dpi -n 20 "$work/doc.pdf"
check "a job to cancel begins" until_true 60 pgrep -f "$zelprint .*--title=cancelled"
cancel -a press
check "cancelling ends it" until_true 30 no_orphan cancelled
check "cancelling leaves nothing" until_true 30 sh -c '[ -z "$(find "$0" "$0/press" -maxdepth 1 -name ".zelprint*")" ]' "$work"
check "the queue is free" until_true 30 idle press

# --- a hot folder that is replaced while a job is printed
lp -d one -t replaced "$work/doc.pdf" >/dev/null
until_true 60 pgrep -f "$zelprint .*--title=replaced" || true
mv "$work/one" "$work/old"
folder one
check "a folder that is replaced gets the job" until_true 120 sh -c 'test -e "$0/one/replaced.ps" -o -e "$0/old/replaced.ps"' "$work"
check "once" count . 'replaced*.ps' 1

# --- what waited comes, in order
folder late
chmod 0777 "$work/shut"
[ -z "$small" ] || rm "$work/small/.filler"
check "the late jobs come when the folder is there" until_true 90 test -e "$work/late/late3.ps"
check "in order" sh -c 'test "$(ls -tr "$0" | tr "\n" " ")" = "late1.ps late2.ps late3.ps "' "$work/late"
check "a folder that may be written again gets its job" until_true 90 test -e "$work/shut/shut.ps"
check "the folder's state is taken back" sh -c '! lpstat -l -p late | grep -q com.zel'
if [ -n "$small" ]; then
    check "the jobs come when the disk has room" until_true 240 idle small
    [ $failures -eq 0 ] || lpstat -l -p small -o small >&2
    check "a full spool folder is told" says "$work/spool.told" '^INFO: The document could not be put .* make room'
    check "and the job tried again" until_true 40 grep -qx 7 "$work/spool.status"
    check "in order, those too" sh -c 'test "$(ls -tr "$0" | tr "\n" " ")" = "small1.ps small2.ps small3.ps "' "$work/small"
fi

# --- the scheduler is stopped, or dies, in the middle of a job
for signal in TERM KILL; do
    print -t "again$signal" "$work/doc.pdf"
    check "a job begins before $signal" until_true 60 pgrep -f "$zelprint .*--title=again$signal"
    kill -s $signal "$scheduler"
    check "nothing goes on after $signal" until_true 30 no_orphan "again$signal"
    check "no half document after $signal" count . "again$signal*.ps" 0
    wait "$scheduler" 2>/dev/null
    restart a
    scheduler=$pid
    export CUPS_SERVER=$address
    check "its job is printed after $signal" until_true 120 idle press
    check "once, after $signal" count press "again$signal*.ps" 1
    check "with all its pages, after $signal" pages "$work/press/again$signal.ps" 3
done
check "files have appeared in one step" grep -q '^moved next.ps$' "$work/watched"
check "and never been seen half" sh -c '! grep -v ^moved "$0"' "$work/watched"
[ $failures -eq 0 ]
