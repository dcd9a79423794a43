#!/bin/sh
# documented-options.sh ZELPRINT DOCS: zelprint's help, its manual pages and its documentation tell of the
# same options.
zelprint=$1 docs=$2 failed=0 seen=0
options() { grep -oE -e '--[a-z][a-z-]+' | sort -u; }

# Options of subcommand $1 (none: of printing) stand in the files $2... and in its manual page, which tells
# of no others.
expect() {
    command=$1
    shift
    manual=$docs/zelprint${command:+-$command}.1
    written=$(cat "$@" | options)
    paged=$(sed 's/\\-/-/g; /^\.SH EXAMPLES/,/^\.SH SEE/d' "$manual" | options)
    told=$("$zelprint" $command --help | options)
    for option in $told; do
        seen=$((seen + 1))
        case $option in --no-*) ;; *) # told as "--no-rotate and so on"
            echo "$written" | grep -qxe "$option" || { echo "$command $option is not in $*" >&2; failed=1; }
        esac
        echo "$paged" | grep -qxe "$option" || { echo "$command $option is not in $manual" >&2; failed=1; }
    done
    for option in $paged; do
        echo "$told" | grep -qxe "$option" || { echo "$manual: zelprint $command has no $option" >&2; failed=1; }
    done
}
expect "" "$docs/zelprint.md"
expect defaults "$docs/zelprint.md"
expect printer-info "$docs/zelprint.md"
expect separations "$docs/zelprint.md"
expect make-separation "$docs/zelprint.md" "$docs/separations.md"
expect queue "$docs/zelprint.md" "$docs/queue.md"
[ "$seen" -gt 30 ] || { echo "the help lists $seen options only" >&2; exit 1; }

# Every subcommand has a page.
for command in $("$zelprint" --help | sed -n '/^Subcommands:/,$p' | sed -nE 's/^  ([a-z-]+) .*/\1/p'); do
    [ -f "$docs/zelprint-$command.1" ] || { echo "zelprint $command has no manual page" >&2; failed=1; }
done
exit $failed
