/// Runs another program and hears what it says.
#pragma once

#include <string>
#include <vector>

struct ProgramResult {
    int status = 0; ///< its exit status; 127 when it could not be started, 128 and more: a signal
    std::string output; ///< what it wrote to standard output and standard error
};

/// Runs `words`, the first of which is looked for in PATH and in the folders of administrators'
/// programs, without a shell, in English, without standard input; waits for its end.
[[nodiscard]] ProgramResult RunProgram(const std::vector<std::string> &words);

/// The word as a shell takes it for one.
[[nodiscard]] std::string ShellWord(const std::string &word);
