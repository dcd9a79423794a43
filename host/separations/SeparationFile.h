/// Files of separation profiles.
#pragma once

#include <string>

/// Why the driver could not load the file, as far as it tells. Begins with the path.
[[nodiscard]] std::string SeparationFileProblem(const std::string &path);
