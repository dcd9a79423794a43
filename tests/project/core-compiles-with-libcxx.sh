#!/bin/bash
# core-compiles-with-libcxx.sh COMPILER, in the project's folder: the driver's and the host's C++ compiles
# with libc++, warnings as errors. Objects are not kept, and nothing is linked.
set -eu
compiler=$1
probe() { echo '#include <vector>' | "$compiler" -stdlib=libc++ -x c++ -std=c++20 -fsyntax-only - 2>/dev/null; }
probe || { echo "no headers of libc++ (Debian: libc++-dev, libc++abi-dev)"; exit 77; }
export compiler
export flags="-stdlib=libc++ -std=c++20 -fsyntax-only -Wall -Wextra -Wshadow -Wno-unused-parameter
  -Wthread-safety -Werror -Iinclude -I. -Iplatform/include
  -DZEL_BUNDLE_IDENTIFIER=\"x\" -DZEL_DIALOGS_MODULE=\"x\"
  -DZEL_VERSION=\"x\" -DZEL_INSTALL_FOLDER=\"x\" $(pkg-config --cflags libtiff-4 lcms2)"
# Without the image module, whose library is C++ of another kind here, and the backend of a print system that
# macOS has its own ways with.
find Common colour ppd support dialogs host -name '*.cpp' ! -path 'host/readers/images/*' ! -path 'host/backend/*' -print0 |
  xargs -0 -n1 -P2 bash -c 'exec "$compiler" $flags "$0"'
