/// Where zelprint lies, and what it needs beside it.
#pragma once

#include <string>

/// Tells where this program lies; `argv0` is its first argument.
void SetProgramPath(const char *argv0);

/// The absolute path of a file or folder called `name` that came with the program: in its folder or
/// in one of the places an installation has for it. Empty when there is none.
[[nodiscard]] std::string FindBesideProgram(const std::string &name);

/// The absolute path of the program `name`, found in $PATH as a shell does; empty when there is
/// none.
[[nodiscard]] std::string FindInPath(const std::string &name);

/// The absolute path without symbolic links; empty when there is nothing at `path`.
[[nodiscard]] std::string RealPath(const std::string &path);
