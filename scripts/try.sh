#!/bin/sh
# try.sh [FOLDER]: builds the driver, prints the sample pages through it in Gray, RGB and CMYK, as
# PostScript and as EPS, and draws a small preview of each file with Ghostscript.
set -eu
cd "$(dirname "$0")/.."
folder=${1:-out}
scripts/install-packages.sh build
scripts/build.sh release zelprint ZELPostscript
rm -rf "$folder"
mkdir -p "$folder"

print() { # SAMPLE SPACE FORMAT
    eps=$([ "$3" = eps ] && echo --eps || true)
    build/release/zelprint --quiet --hot-folder "$folder" -t "$(basename "${1%.*}")-$2" \
        --colour-space "$2" $eps "$1" 2>"$folder/messages.txt" || {
        cat "$folder/messages.txt" >&2
        exit 1
    }
}

preview() { # FILE: a picture of its first page, named FILE.png
    gs -q -dSAFER -dBATCH -dNOPAUSE -dEPSCrop -dLastPage=1 -sDEVICE=png16m -r216 \
        -dDownScaleFactor=4 \
        -sOutputFile="$1.png" "$1"
    printf '   %-32s preview %s.png\n' "$1" "$1"
}

echo "== Printing the samples into the folder $folder"
for sample in samples/photograph.jpg samples/page.pdf; do
    for space in gray rgb cmyk; do
        for format in ps eps; do print "$sample" $space $format; done
    done
done
rm -f "$folder/messages.txt"
for file in "$folder"/*.ps "$folder"/*.eps; do preview "$file"; done
