#!/bin/bash
# test-as-user.sh: builds and runs once more the tests that another person's rights, language or folders could
# make fail: as an ordinary user with a German locale, in a copy of the project whose path has blanks and
# umlauts. Root has that user for as long as it takes, in a mount namespace; the machine is left as it was.
source "$(dirname "$0")/common.sh"
tests=(
    cf_preferences decimal_comma eight_colour_table field_helpers host_output_staging page_setup postscript_text
    print_server real_input separations style_printer units zelprint_command zelprint_failures
    zelprint_separations
)
scripts/install-packages.sh build test

place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
export home="$place/Zoë Müller" user=zel-tester id=61234
tree="$home/für die Prüfung"
mkdir -p "$tree" "$place/locale"
chmod 755 "$place"
tar -c --exclude=./build --exclude=./out --exclude=./.git . | tar -x -C "$tree"

environment=(LANG=de_DE.UTF-8 "LOCPATH=$place/locale")
localedef -c -i de_DE -f UTF-8 "$place/locale/de_DE.UTF-8" >/dev/null 2>&1 || true
[ "$(env "${environment[@]}" LC_ALL=de_DE.UTF-8 locale decimal_point)" = , ] ||
    echo "== No German locale can be made here: only LANG says so"

as_user() { (cd "$tree" && env "${environment[@]}" "$@"); } # COMMAND...
if [ "$(id -u)" -eq 0 ]; then
    become='mount --bind "$0" /etc/passwd && exec setpriv --reuid "$id" --regid "$id" --clear-groups --reset-env "$@"'
    { cat /etc/passwd; echo "$user:x:$id:$id:Zoë Müller:$home:/bin/sh"; } >"$place/passwd"
    chmod 644 "$place/passwd"
    chown -R "$id:$id" "$home"
    as_user() { (cd "$tree" && unshare --mount sh -c "$become" "$place/passwd" env "${environment[@]}" "$@"); }
    if ! as_user true; then
        echo "== No ordinary user can be made here: nothing is tested as one"
        exit 0
    fi
fi

echo "== Testing as the user $(as_user id -un) in $(as_user pwd), in $(as_user sh -c 'echo $LANG')"
as_user scripts/build.sh debug zelprint ZELPostscript "${tests[@]/%/_test}"
as_user ctest --preset debug --parallel "$(nproc)" -R "^($(IFS='|'; echo "${tests[*]}"))(_up)?\$"
