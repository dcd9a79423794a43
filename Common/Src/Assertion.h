/// Checks against programming errors of the driver itself; they stay in release builds.
#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the process when `holds` is false. `expression` is the text reported.
inline void Assert(bool holds, const char *expression, const char *function, const char *file) {
    if (holds) return;
    std::fprintf(stderr, "Assertion failed: (%s), function %s, file %s.\n", expression, function,
                 file);
    std::abort();
}
