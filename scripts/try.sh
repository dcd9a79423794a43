#!/bin/bash
# try.sh [FOLDER]: builds the driver, prints the sample pages through it in Gray, RGB and CMYK, as PostScript
# and as EPS, and draws a small preview of each file with Ghostscript. FOLDER (out, in the project's folder,
# unless given) may hold what an earlier run has made, which is replaced, and nothing else.
callers=$PWD
source "$(dirname "$0")/common.sh"
samples=(samples/photograph.jpg samples/page.pdf)
spaces=(gray rgb cmyk)

case ${1:-} in
    -*) fail "usage: scripts/try.sh [FOLDER]" ;;
    "") folder=out ;;
    /*) folder=$1 ;;
    *) folder=$callers/$1 ;;
esac
[ $# -le 1 ] || fail "usage: scripts/try.sh [FOLDER]"

title() { # SAMPLE SPACE: what the files made from it are named after
    local name=${1##*/}
    echo "${name%.*}-$2"
}

is_ours() { # FILE: whether its name is one that a run gives
    local sample space
    [ -f "$1" ] && [ ! -L "$1" ] || return 1
    for sample in "${samples[@]}"; do
        for space in "${spaces[@]}"; do
            [[ ${1##*/} =~ ^$(title "$sample" "$space")(_p[0-9]+)?\.e?ps(\.png)?$ ]] && return 0
        done
    done
    return 1
}

print() { # SAMPLE SPACE FORMAT
    local options=() messages
    [ "$3" = ps ] || options=(--eps)
    messages=$(build/release/zelprint --quiet --hot-folder "$folder" -t "$(title "$1" "$2")" \
        --colour-space "$2" "${options[@]}" "$1" 2>&1) || fail "$messages"
}

preview() { # FILE: a picture of its first page, named FILE.png
    gs -q -dSAFER -dBATCH -dNOPAUSE -dEPSCrop -dLastPage=1 -sDEVICE=png16m -r216 -dDownScaleFactor=4 \
        -sstdout=%stderr -sOutputFile=- "$1" >"$1.png"
    printf '   %-32s preview %s.png\n' "$1" "$1"
}

check_folder() {
    local file
    for file in "$folder"/*; do
        is_ours "$file" || fail "the folder $folder holds something else than this script prints, ${file##*/}; name an empty folder or a new one"
    done
}

# Before anything takes long.
need_build_folder build
need_writable "$folder" "name another one"
shopt -s nullglob dotglob
check_folder

scripts/install-packages.sh build
scripts/build.sh release zelprint ZELPostscript
echo "== Printing the samples into the folder $folder"
check_folder
for file in "$folder"/*; do rm "$file"; done
for sample in "${samples[@]}"; do
    for space in "${spaces[@]}"; do
        for format in ps eps; do print "$sample" "$space" $format; done
    done
done
for file in "$folder"/*.ps "$folder"/*.eps; do preview "$file"; done
