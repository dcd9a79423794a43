#!/bin/sh
# documented-options.sh ZELPRINT DOCS: zelprint's help, its manual page and its documentation tell of the
# same options.
zelprint=$1 docs=$2 failed=0 seen=0
options() { grep -oE -e '--[a-z][a-z-]+' | sort -u; }
manual=$(sed 's/\\-/-/g' "$docs/zelprint.1" | options)

# Options of subcommand $1 (none: of printing) stand in the files $2...
expect() {
    command=$1
    shift
    written=$(cat "$@" | options)
    for option in $("$zelprint" $command --help | options); do
        seen=$((seen + 1))
        for text in "$written" "$manual"; do
            echo "$text" | grep -qxe "$option" && continue
            case $option in --no-*) continue ;; esac # told as "--no-rotate and so on"
            echo "$command $option is not in $* or not in zelprint.1" >&2
            failed=1
        done
    done
}
expect "" "$docs/zelprint.md"
expect defaults "$docs/zelprint.md"
expect printer-info "$docs/zelprint.md"
expect separations "$docs/zelprint.md"
expect make-separation "$docs/zelprint.md" "$docs/separations.md"
expect queue "$docs/zelprint.md" "$docs/queue.md"
[ "$seen" -gt 30 ] || { echo "the help lists $seen options only" >&2; exit 1; }

told=$({ for command in "" defaults printer-info separations make-separation queue; do "$zelprint" $command --help; done; } | options)
for option in $manual; do
    echo "$told" | grep -qxe "$option" || { echo "zelprint has no $option" >&2; failed=1; }
done
exit $failed
