#include "host/terminal/Cancellation.h"

#include <atomic>
#include <csignal>
#include <exception>
#include <string_view>
#include <unistd.h>

namespace {

constexpr char kMessage[] = "cancelled; nothing was kept";

std::atomic<int> wantedBy{0};
std::atomic<int> depth{0};
std::atomic<bool> isDisregarded{false};
std::atomic<bool> isJSON{false};
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free,
              "used by a signal handler");

void Say(int fd, std::string_view text) {
    // The end does not depend on whether anybody hears of it.
    if (write(fd, text.data(), text.size()) < 0) return;
}

/// In a signal handler, too: nothing but what the system allows there.
[[noreturn]] void EndNow() {
    for (const std::string_view part : {"zelprint: ", kMessage, "\n"})
        Say(STDERR_FILENO, part);
    const bool isInterrupt = Cancellation::Status() == ExitStatus::Cancelled;
    const char *status = isInterrupt ? "\",\"status\":130}}\n" : "\",\"status\":143}}\n";
    if (isJSON)
        for (const std::string_view part :
             {"{\"error\":{\"about\":\"user\",\"message\":\"", kMessage, status})
            Say(STDOUT_FILENO, part);
    _exit(static_cast<int>(Cancellation::Status()));
}

void Note(int number) {
    if (isDisregarded) return;
    wantedBy = number;
    if (depth == 0) EndNow();
}

void Handle(int number, void (*handler)(int)) {
    struct sigaction old {};
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    (void)sigaction(number, &action, &old);
    // A job started in the background by a script ignores Ctrl-C, and goes on doing so.
    if (old.sa_handler == SIG_IGN) (void)sigaction(number, &old, nullptr);
}

} // namespace

void Cancellation::Begin(bool json) {
    isJSON = json;
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        Handle(number, Note);
    for (const int number : {SIGPIPE, SIGXFSZ})
        Handle(number, SIG_IGN);
}

void Cancellation::Disregard() {
    isDisregarded = true;
    wantedBy = 0;
}

Cancellation::Cancellation() {
    ++depth;
}

Cancellation::~Cancellation() {
    if (--depth == 0 && IsWanted() && std::uncaught_exceptions() == 0) EndNow();
}

bool Cancellation::IsWanted() {
    return wantedBy != 0;
}

ExitStatus Cancellation::Status() {
    return wantedBy == SIGINT ? ExitStatus::Cancelled : ExitStatus::Terminated;
}

void Cancellation::Check() {
    if (IsWanted()) throw HostError(Status(), kMessage);
}
