/// Runs a command as a shell does and keeps what it says.
#pragma once

#include "tests/Quoted.h"

#include <cstdio>
#include <string>
#include <sys/wait.h>

struct Outcome {
    int status = -1;    ///< exit status; -1 when it did not exit by itself
    std::string output; ///< both streams
};

inline Outcome RunShell(const std::string &command) {
    Outcome outcome;
    FILE *pipe = popen((command + " 2>&1").c_str(), "r");
    if (!pipe) return outcome;
    char part[4096];
    for (size_t got = 0; (got = fread(part, 1, sizeof part, pipe)) > 0;)
        outcome.output.append(part, got);
    const int ended = pclose(pipe);
    outcome.status = WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
    return outcome;
}
