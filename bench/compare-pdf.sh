#!/bin/bash
# compare-pdf.sh [RUNS]: times zelprint and other programs that make CMYK PostScript of PDF files, as whole
# commands, in turns, beside Ghostscript that only renders (to /dev/null), and prints medians, ratios to the
# latter and the most memory that a command and its children had together. A4 at 600 dpi. What nobody can do
# without is measured likewise: handing all rows to another program, which throws them away, and writing as many
# bytes as the document has and bringing them to the disk.
#
# Builds the driver and installs the peers from Debian packages. Needs about 3 GB in $TMPDIR (or /tmp).
set -eu
cd "$(dirname "$0")/.."
root=$PWD
runs=${1:-5}
if [ -z "${ZELPRINT-}" ]; then
    scripts/install-packages.sh build test bench >&2
    scripts/build.sh release zelprint ZELPostscript >&2
fi
zelprint=${ZELPRINT-$root/build/release/zelprint}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
mkdir hot
export GNUSTEP_CONFIG_FILE=$work/GNUstep.conf
sed -e "s#^GNUSTEP_USER_DEFAULTS_DIR=.*#GNUSTEP_USER_DEFAULTS_DIR=$work/Defaults#" \
    -e "s#^\(GNUSTEP_USER_DIR_[A-Z_]*\)=GNUstep/#\1=$work/GNUstep/#" /etc/GNUstep/GNUstep.conf > GNUstep.conf

cp "$root/samples/page.pdf" sample.pdf
PYTHONPATH=$root/tests/host/readers/pdf python3 -B - <<'PYTHON'
import pdfwriter
pdfwriter.full_text(10).write('text.pdf')
PYTHON

gs() { command gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=pamcmyk32 -r600 -sBandListStorage=memory "$@"; }
export -f gs
zel="$zelprint --quiet --ppd $root/bench/a4-600dpi.ppd --media A4 --resolution 600dpi --hot-folder hot --colour-space cmyk"

# as_long_as NAME: a command that writes as many bytes as zelprint makes of NAME.pdf
as_long_as() {
    rm -rf hot && mkdir hot
    $zel --no-sync "$1.pdf"
    echo "dd if=/dev/zero of=hot/a bs=64k count=$(($(stat -c %s "hot/$1.ps") / 65536)) conv=fsync status=none"
}

declare -a names commands
add() { names+=("$1"); commands+=("$2"); }
for file in text sample; do
    add "$file: Ghostscript to /dev/null"     "gs -sOutputFile=/dev/null $file.pdf"
    add "$file: its rows through a pipe"      "gs -sOutputFile=%stdout $file.pdf | dd of=/dev/null bs=1M status=none"
    add "$file: dd, as long as the document"  "$(as_long_as $file)"
    add "$file: zelprint"                     "$zel $file.pdf"
    add "$file: zelprint, all separated anew" "$zel --pdf-colours separate $file.pdf"
    add "$file: pdftoppm (RGB)"               "pdftoppm -r 600 -aa no -aaVector no $file.pdf hot/a"
    add "$file: pdftops -rasterize always"    "pdftops -q -level2 -r 600 -rasterize always -processcolorformat CMYK8 $file.pdf hot/a.ps"
done

median() { sort -n "$1" | awk '{ v[NR] = $1 } END { print NR % 2 ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }

for ((run = 0; run <= runs; ++run)); do
    echo "== Run $run of $runs" >&2
    for i in "${!names[@]}"; do
        rm -rf hot && mkdir hot
        sync # what the command before has left to be written is not this one's time
        # shellcheck disable=SC2086
        python3 "$root/bench/peak-memory.py" bash -c "${commands[$i]}" > result 2> err.txt || { cat err.txt >&2; exit 1; }
        read -r ms megabytes < result
        [ $run -gt 0 ] || continue # the first run only warms the caches
        echo "$ms" >> "times.$i"
        echo "$megabytes" >> "memory.$i"
    done
done

printf '%-36s %9s %8s %8s\n' "" "ms" "ratio" "MB"
for i in "${!names[@]}"; do
    ms=$(median "times.$i")
    case ${names[$i]} in *'to /dev/null') base=$ms ;; esac
    awk -v name="${names[$i]}" -v ms="$ms" -v base="$base" -v memory="$(sort -n "memory.$i" | tail -1)" \
        'BEGIN { printf "%-36s %9.0f %8.2f %8d\n", name, ms, ms / base, memory }'
done
