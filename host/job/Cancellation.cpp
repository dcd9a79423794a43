#include "host/job/Cancellation.h"

#include <atomic>

namespace {

std::atomic<int> wantedBy{0};
static_assert(std::atomic<int>::is_always_lock_free, "set by a signal handler");

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGXFSZ};
constexpr int kCancelling = 3;

void Note(int number) {
    wantedBy = number;
}

} // namespace

Cancellation::Cancellation() {
    wantedBy = 0;
    for (int i = 0; i < 5; ++i) {
        struct sigaction action {};
        action.sa_handler = i < kCancelling ? Note : SIG_IGN;
        action.sa_flags = SA_RESTART;
        (void)sigaction(kSignals[i], &action, &mOld[i]);
        // A job started in the background by a script ignores Ctrl-C, and goes on doing so.
        if (mOld[i].sa_handler == SIG_IGN) (void)sigaction(kSignals[i], &mOld[i], nullptr);
    }
}

Cancellation::~Cancellation() {
    for (int i = 0; i < 5; ++i)
        (void)sigaction(kSignals[i], &mOld[i], nullptr);
}

bool Cancellation::IsWanted() {
    return wantedBy != 0;
}

ExitStatus Cancellation::Status() {
    return wantedBy == SIGINT ? ExitStatus::Cancelled : ExitStatus::Terminated;
}
