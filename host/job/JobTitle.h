/// Titles that may go, as they are, into a PostScript comment and into a file name.
#pragma once

#include <optional>
#include <string>

[[nodiscard]] bool IsUTF8(const std::string &text);

/// A title made from any bytes: valid UTF-8, one line without control characters, parentheses that
/// pair, no slash or backslash, no leading dot, at most 200 bytes; "Untitled" when nothing is left.
[[nodiscard]] std::string CleanTitle(const std::string &text);

/// The title of a job that prints `path`: the file's name without folders and extension, cleaned.
[[nodiscard]] std::string TitleOfFile(const std::string &path);

/// The title that the user has given, cleaned, or that of the first file. Throws HostError (Usage)
/// when it is not UTF-8.
[[nodiscard]] std::string ChooseTitle(const std::optional<std::string> &given,
                                      const std::string &firstFile);
