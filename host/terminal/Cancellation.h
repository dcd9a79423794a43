/// Ctrl-C and its kin, from the start of the program to its end.
#pragma once

#include "host/terminal/ExitStatus.h"

/// While one lives, SIGINT, SIGTERM and SIGHUP are noted instead of ending the process, so that
/// what is unfinished can be taken away. May be nested. With the last of them the process ends, if
/// a signal has come and no exception is on its way.
class Cancellation {
public:
    /// From now on these signals end the process at once, with the documented status and one line
    /// (and with JSON on standard output, if `json`); writing to a closed pipe or beyond a limit
    /// fails instead of killing. To be called once.
    static void Begin(bool json);
    /// The document is in its place: from now on signals change nothing.
    static void Disregard();

    Cancellation();
    ~Cancellation();
    Cancellation(const Cancellation &) = delete;
    Cancellation &operator=(const Cancellation &) = delete;

    [[nodiscard]] static bool IsWanted();
    /// The exit status that belongs to the signal.
    [[nodiscard]] static ExitStatus Status();
    /// Throws HostError with the status that belongs to the signal, if one has come.
    static void Check();
};
