#!/bin/sh
# sdk.sh CMAKE BUILD_FOLDER CXX_COMPILER EXAMPLES TEST: hosts are built from what is installed and nothing of
# the sources, by pkg-config, by CMake and without a compiler; each of them passes the script TEST.
set -eu
cmake=$1 compiler=$3 examples=$4 test=$5
home="$HOME/a folder with blanks"
mkdir "$home"
"$cmake" --install "$2" --prefix "$home/made for" >"$HOME/log" || { cat "$HOME/log" >&2; exit 1; }
mv "$home/made for" "$home/moved" # an installation may be moved
try() { # WHAT PROGRAM...: the test of one host
    what=$1
    shift
    "$test" "$1" "$bundle" || { echo "the host built by $what fails" >&2; exit 1; }
}

PKG_CONFIG_PATH=$(dirname "$(find "$home/moved" -name zel-postscript.pc)")
export PKG_CONFIG_PATH
bundle=$(eval "realpath $(pkg-config --variable=bundle zel-postscript)")
flags=$(pkg-config --cflags --libs zel-postscript) # words with escaped blanks
cp "$examples"/* "$home"
eval "'$compiler' -std=c++20 -o \"\$home/minimal_host\" \"\$home/minimal_host.cpp\" $flags"
try "pkg-config in C++" "$home/minimal_host"
eval "'${compiler%++}' -std=gnu11 -Wall -Wextra -Werror -o \"\$home/c_host\" \"\$home/c_host.c\" $flags -ldl"
try "pkg-config in C" "$home/c_host"
try "Python" "$home/python_host.py"

"$cmake" -S "$home" -B "$home/build" "-DCMAKE_CXX_COMPILER=$compiler" "-DCMAKE_PREFIX_PATH=$home/moved" \
    >"$HOME/log" && "$cmake" --build "$home/build" >>"$HOME/log" || { cat "$HOME/log" >&2; exit 1; }
grep -qF "The driver's bundle: $bundle" "$HOME/log" || { echo "CMake does not find $bundle" >&2; exit 1; }
try CMake "$home/build/minimal_host"
