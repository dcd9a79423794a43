#!/bin/bash
# completion.sh SCRIPT PROGRAM PPD: what the completion of bash offers for unfinished command lines.
source "$1"
compopt() { :; } # only there while a person types
program=$2 ppd=$3 failed=0

# offers WORDS... -- EXPECTED...: each is offered for the last of the words
offers() {
    COMP_WORDS=("$program")
    while [ "$1" != "--" ]; do COMP_WORDS+=("$1"); shift; done
    shift
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    _zelprint
    local expected
    for expected in "$@"; do
        printf '%s\n' "${COMPREPLY[@]}" | grep -qxF -- "$expected" && continue
        echo "no $expected for: ${COMP_WORDS[*]:1}; but: ${COMPREPLY[*]}" >&2
        failed=1
    done
}

cp "$ppd" "$HOME/my printer.ppd"
cd "$HOME" || exit 1
mkdir "hot folder"
offers --he -- --help
offers --no- -- --no-rotate --no-queue
offers --pp -- --ppd
offers prin -- printer-info
offers printer-info --js -- --json
offers printer-info "my pri" -- "my printer.ppd"
offers --colour-space g -- gray
offers --intent "" -- perceptual relative saturation absolute
offers make-separation --intent rel -- relative
offers --scale s -- shrink
offers --separation "" -- Standard
offers --hot-folder "ho" -- "hot folder"
offers --ppd "my\\ printer.ppd" --media "" -- A4 auto
offers --ppd "my\\ printer.ppd" --resolution 6 -- 600dpi
exit $failed
