/// Ctrl-C and its kin while a document is being written.
#ifndef ZEL_HOST_CANCELLATION_H
#define ZEL_HOST_CANCELLATION_H

#include "host/command/ExitStatus.h"
#include <csignal>

/// While it lives, SIGINT, SIGTERM and SIGHUP are noted instead of ending the process, so that the
/// unfinished document can be taken away; a write beyond a limit fails instead of killing. One at a
/// time.
class Cancellation {
public:
    Cancellation();
    ~Cancellation();
    Cancellation(const Cancellation &) = delete;
    Cancellation &operator=(const Cancellation &) = delete;

    [[nodiscard]] static bool IsWanted();
    /// The exit status that belongs to the signal.
    [[nodiscard]] static ExitStatus Status();

private:
    struct sigaction mOld[5];
};

#endif
