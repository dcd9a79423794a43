#!/bin/sh
# scripts.sh SOURCE_ROOT: the scripts of the README, with stubs for the tools that they call, in a folder
# whose name is not a plain word: what they refuse, and that long stages say how far they are.
set -eu
tree="$HOME/zwei Wörter/ZEL's"
mkdir -p "$tree" "$HOME/bin"
cp -R "$1/scripts" "$1/packaging" "$tree"
export PATH="$HOME/bin:$PATH" NINJA_STATUS="[%f/%t] "
cd "$tree"

fail() {
    echo "FAILED: $1" >&2
    cat "$HOME/said" >&2
    exit 1
}
stub() { # NAME: a tool that does what standard input says
    { echo '#!/bin/sh'; cat; } >"$HOME/bin/$1"
    chmod +x "$HOME/bin/$1"
}
run() { # COMMAND...: its exit status in $status, both its streams in $HOME/said
    status=0
    "$@" >"$HOME/said" 2>&1 </dev/null || status=$?
}
expect() { grep -qx -e "$1" "$HOME/said" || fail "no line '$1'"; }
refused() { # PATTERN: one line, before anything else is done
    [ "$status" -eq 1 ] && [ "$(wc -l <"$HOME/said")" -eq 1 ] || fail "exit status $status, or not one line"
    expect "$1"
}

# A folder that holds other things than try.sh's own is left as it is.
stub apt-get <<'END'
echo "a refusal comes before packages are installed" >&2; exit 1
END
for name in notes.txt photograph-gray.psd page-gray.ps~ .hidden .photograph-gray.ps; do
    mkdir "mine $name"
    touch "mine $name/$name" "mine $name/photograph-gray.ps"
    run scripts/try.sh "mine $name"
    refused "try.sh: the folder .*/mine $name holds something else .*, $name; .*"
    [ "$(ls -A "mine $name" | wc -l)" -eq "$(printf '%s\n' "$name" photograph-gray.ps | sort -u | wc -l)" ] || fail "files are lost"
done
mkdir nested linked
mkdir nested/page-gray.ps
ln -s ../packaging/packages-build.txt linked/page-gray.ps
for folder in nested linked; do
    run scripts/try.sh $folder
    refused "try.sh: the folder .*/$folder holds something else .*, page-gray.ps; .*"
done
touch file
run scripts/try.sh file
refused "try.sh: no files can be made in the folder .*/file; .*"
run scripts/try.sh --help
refused "try.sh: usage: .*"
for minutes in 0 soon -1 "1 2" --programs=1; do
    run scripts/fuzz.sh $minutes
    refused "fuzz.sh: usage: .*"
done

# A tree in which nothing can be made.
rm -rf build
touch build
for script in "try.sh" "test.sh" "build.sh release" "coverage.sh" "fuzz.sh" "fuzz.sh --programs"; do
    run scripts/$script
    refused "${script%% *}: no files can be made in the folder $tree/build; copy .*"
done
rm build

# A build is counted, and a failed one shows its errors.
stub cmake <<'END'
case $1 in --preset) exit 0 ;; esac
step=0
while [ $step -lt 40 ]; do
    step=$((step + 1))
    echo "[$step/40] Building CXX object a.o"
done
[ ! -e fails ] || { echo "a.cpp:1:1: error: it fails"; exit 1; }
END
run scripts/build.sh release
[ "$status" -eq 0 ] || fail "build.sh failed"
expect "   20 of 40 steps done"
expect "   40 of 40 steps done"
[ "$(wc -l <"$HOME/said")" -le 15 ] || fail "more than ten lines tell of a build"
touch fails
run scripts/build.sh release
[ "$status" -eq 1 ] || fail "a failed build ends with $status"
expect "a.cpp:1:1: error: it fails"
rm fails

# So are packages, by name in each stage.
stub dpkg-query </dev/null
stub sudo <<'END'
exec "$@"
END
stub apt-get <<'END'
[ "$1" = install ] || exit 0
echo "0 upgraded, 2 newly installed, 0 to remove and 7 not upgraded."
echo "Get:1 http://a/b c amd64 1.0 [5 kB]"
echo "Get:2 http://a/b d amd64 1.0 [5 kB]"
[ ! -e fails ] || { echo "E: it fails"; exit 100; }
echo "Unpacking c (1.0) ..."
echo "Unpacking d (1.0) ..."
echo "Setting up c (1.0) ..."
echo "Setting up d (1.0) ..."
END
run scripts/install-packages.sh build test
[ "$status" -eq 0 ] || fail "install-packages.sh failed"
for stage in fetched unpacked "set up"; do
    expect "   1 of 2 packages $stage"
    expect "   2 of 2 packages $stage"
done
touch fails
run scripts/install-packages.sh build test
[ "$status" -eq 1 ] || fail "a failed installation ends with $status"
expect "E: it fails"

# A preset without tests is no preset to test, and nothing is built to find that out.
stub ctest <<'END'
echo 'Available test presets:'; echo; echo '  "ci"'; echo '  "debug"'
END
stub dpkg-query <<'END'
echo ii
END
run scripts/test.sh release
[ "$status" -eq 1 ] || fail "test.sh release ends with $status"
expect "test.sh: there are no tests in the preset 'release', .*"

# What is tested is summed up by folder, and too little of it is a failure.
covered() { # LINES BRANCHES: in percent
    cat <<END
{"data": [{"files": [
    {"filename": "$tree/a/b.cpp", "summary": {"lines": {"count": 100, "covered": $1},
        "branches": {"count": 100, "covered": $2}}},
    {"filename": "$tree/c/d.cpp", "summary": {"lines": {"count": 0, "covered": 0},
        "branches": {"count": 0, "covered": 0}}},
    {"filename": "$tree/tests/a/e.cpp", "summary": {"lines": {"count": 100, "covered": 0},
        "branches": {"count": 100, "covered": 0}}}]}]}
END
}
table() { covered "$1" "$2" | python3 -B scripts/coverage-table.py "$tree" 95 85 list a c; }
run table 95 85
[ "$status" -eq 0 ] || fail "enough coverage ends with $status"
expect 'a/ *95.0 % *100 *85.0 % *100'
expect 'all that is shipped *95.0 % *100 *85.0 % *100'
grep -q '^a/b.cpp ' list || fail "the list has no a/b.cpp"
run table 94 85
[ "$status" -eq 1 ] || fail "too few lines end with $status"
expect 'coverage: 94.0 % of the lines are tested; at least 95 % have to be'
run table 95 84
[ "$status" -eq 1 ] || fail "too few branches end with $status"
