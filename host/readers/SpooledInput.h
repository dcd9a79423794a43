/// Input that comes once and in its order, such as standard input, kept so that it can be read like
/// any file.
#pragma once

#include "host/readers/UnnamedFile.h"
#include <memory>
#include <string>

/// What a path of the command line stands for.
struct InputFile {
    std::string name;                           ///< for people
    std::string path;                           ///< what readers open
    std::shared_ptr<const UnnamedFile> spooled; ///< behind the path; null: it is the file itself
};

/// Takes all that comes from standard input ("-") or from a pipe, at most 4 GiB; any other path is
/// left as it is. Throws HostError.
[[nodiscard]] InputFile TakeInput(const std::string &path);

/// What people call the file that readers open as `path`.
[[nodiscard]] std::string NameOfInput(const std::string &path);
