// A small file, read or replaced as a whole.
#pragma once
#include <string>

/// Reads the regular file at `path`. 0 or an errno value; ENOENT when there is none.
[[nodiscard]] int ReadWholeFile(const std::string &path, std::string &bytes);

/// Replaces the file at `path`, or the one that a link there leads to, by `bytes`, which are on the
/// disk then: at every moment a reader finds the old file or the new one. Only its owner may read
/// it. 0 or an errno value; what was there is then left as it was.
[[nodiscard]] int ReplaceWholeFile(const std::string &path, const std::string &bytes);
