#!/bin/bash
# compare-peers.sh [RUNS]: times zelprint and other programs that turn the same image into PostScript,
# as whole commands, in turns, and prints the medians and ratios. One page of A4 at 600 dpi.
#
# Builds the driver and installs the peers from Debian packages. Needs about 1.5 GB in $TMPDIR (or /tmp), on the file system
# that is to be measured, and a machine that does nothing else meanwhile.
set -eu
cd "$(dirname "$0")/.."
root=$PWD
runs=${1:-5}
scripts/install-packages.sh build bench >&2
scripts/build.sh release zelprint ZELPostscript >&2
zelprint=$root/build/release/zelprint

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
mkdir hot

echo "== Making the page: photograph, 4960 x 7016 RGB" >&2
vips thumbnail "$root/samples/photograph.jpg" full.v 4960 --height 7016 --size force
vips tiffsave full.v page.tif --compression none --xres 23.62204724 --yres 23.62204724 --resunit inch --strip
vips ppmsave full.v page.ppm --strip
rm full.v
tiff2pdf -o page.pdf page.tif
icc=/usr/share/color/icc/ghostscript

# A separation profile made from the same two ICC profiles that the colour-managed peers use.
export GNUSTEP_CONFIG_FILE=$work/GNUstep.conf
sed -e "s#^GNUSTEP_USER_DEFAULTS_DIR=.*#GNUSTEP_USER_DEFAULTS_DIR=$work/Defaults#" \
    -e "s#^\(GNUSTEP_USER_DIR_[A-Z_]*\)=GNUstep/#\1=$work/GNUstep/#" /etc/GNUstep/GNUstep.conf > GNUstep.conf
table=yes
"$zelprint" make-separation --from $icc/srgb.icc --to $icc/default_cmyk.icc bench >/dev/null || table=no

zel() { "$zelprint" --quiet --ppd "$root/bench/a4-600dpi.ppd" --media A4 --resolution 600dpi --hot-folder hot "$@" page.tif; }

# Name and command; all write into the folder hot. The ratio is to the zelprint line above.
declare -a names commands
add() { names+=("$1"); commands+=("$2"); }
add "zelprint, RGB"                        'zel --colour-space rgb'
add "tiff2ps -2"                           'tiff2ps -2 -O hot/a.ps page.tif'
add "pnmtops, ASCII85 (from PPM)"          'pnmtops -dpi 600 -noturn -psfilter -level 2 -ascii85 page.ppm > hot/a.ps'
add "pnmtops, hexadecimal (from PPM)"      'pnmtops -dpi 600 -noturn page.ppm > hot/a.ps'
add "tifftopnm | pnmtops, ASCII85"         'tifftopnm -quiet page.tif | pnmtops -quiet -dpi 600 -noturn -psfilter -level 2 -ascii85 > hot/a.ps'
add "GraphicsMagick, ps2"                  'gm convert page.tif ps2:hot/a.ps'
add "pdftops -level2 (from PDF)"           'pdftops -q -level2 page.pdf hot/a.ps'
add "Ghostscript ps2write (from PDF)"      'gs -q -dNOPAUSE -dBATCH -dSAFER -sDEVICE=ps2write -dEncodeColorImages=false -o hot/a.ps page.pdf'
add "zelprint, CMYK by black generation"   'zel --colour-space cmyk'
add "GraphicsMagick, CMYK by formula, ps2" 'gm convert page.tif -colorspace CMYK ps2:hot/a.ps'
add "Ghostscript ps2write, CMYK (from PDF)" 'gs -q -dNOPAUSE -dBATCH -dSAFER -sDEVICE=ps2write -dEncodeColorImages=false -sColorConversionStrategy=CMYK -o hot/a.ps page.pdf'
if [ $table = yes ]; then
    add "zelprint, CMYK by separation profile" 'zel --colour-space cmyk --separation bench'
    add "tificc | tiff2ps -2, CMYK by ICC" "tificc -i $icc/srgb.icc -o $icc/default_cmyk.icc -t 1 page.tif hot/b.tif && tiff2ps -2 -O hot/a.ps hot/b.tif"
fi

# Runs command $1 and appends its milliseconds to the file times.$1.
timed() {
    rm -rf hot && mkdir hot
    sync # what the command before has left to be written is not this one's time
    local start=${EPOCHREALTIME//[.,]/}
    eval "${commands[$1]}" >/dev/null 2>err.txt || { echo "failed: ${commands[$1]}" >&2; cat err.txt >&2; return 1; }
    local end=${EPOCHREALTIME//[.,]/}
    [ -n "$(find hot -name '*.ps' -size +1M)" ] || { echo "no output: ${commands[$1]}" >&2; cat err.txt >&2; return 1; }
    echo $(((end - start) / 1000)) >> "times.$1"
    find hot -name '*.ps' -printf '%s\n' > "size.$1"
}
median() { sort -n "$1" | awk '{ v[NR] = $1 } END { print NR % 2 ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }

for ((run = 0; run <= runs; ++run)); do
    echo "== Run $run of $runs" >&2
    for i in "${!names[@]}"; do
        if ! timed "$i"; then # a peer that fails is left out; without zelprint there is nothing to compare
            case ${names[$i]} in zelprint*) exit 1 ;; esac
        fi
    done
    [ $run -gt 0 ] || rm -f times.* # the first run only warms the caches
done

printf '%-42s %9s %8s %8s\n' "" "ms" "MB" "ratio"
for i in "${!names[@]}"; do
    [ -e "times.$i" ] || continue
    ms=$(median "times.$i")
    case ${names[$i]} in zelprint*) base=$ms ;; esac
    awk -v name="${names[$i]}" -v ms="$ms" -v base="$base" -v size="$(cat "size.$i")" \
        'BEGIN { printf "%-42s %9.0f %8.1f %8.1f\n", name, ms, size / 1e6, ms / base }'
done
