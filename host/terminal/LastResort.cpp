#include "host/terminal/LastResort.h"

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <initializer_list>
#include <mutex>
#include <new>
#include <string_view>
#include <sys/types.h>
#include <unistd.h>

namespace {

constexpr std::string_view kNoMemory = "out of memory";
constexpr std::string_view kLibrary = "a library ended the program, as many do when memory is out";
constexpr std::string_view kTrap =
    "the program failed, for want of memory or by an error of its own";

std::atomic<bool> isOwnEnd{false};
std::atomic<bool> isEnding{false};
std::atomic<bool> isJSON{false};
std::atomic<int> settledStatus{-1};
/// A child that has not become another program yet has nothing of its own to take away.
std::atomic<pid_t> process{0};

std::mutex listMutex;
std::atomic<Unfinished *> list{nullptr};

void Say(int fd, std::string_view text) {
    // The end does not depend on whether anybody hears of it.
    if (write(fd, text.data(), text.size()) < 0) return;
}

/// The exit status: what was asked for may be there, but not the answer.
ExitStatus StatusNow() {
    const auto settled = static_cast<ExitStatus>(settledStatus.load());
    if (settledStatus < 0) return ExitStatus::Driver;
    return settled == ExitStatus::Success && isJSON ? ExitStatus::Output : settled;
}

/// Nothing but what the system allows in a signal handler.
int Tell(std::string_view why) {
    const ExitStatus status = StatusNow();
    const std::string_view rest =
        settledStatus < 0 ? "; nothing unfinished was kept" : "; the document is in its place";
    for (const std::string_view part :
         {std::string_view("zelprint: "), why, rest, std::string_view("\n")})
        Say(STDERR_FILENO, part);
    const char number[] = {static_cast<char>('0' + static_cast<int>(status)), '\0'};
    if (isJSON)
        for (const std::string_view part :
             {std::string_view("{\"error\":{\"about\":\"program\",\"message\":\""), why, rest,
              std::string_view("\",\"status\":"), std::string_view(number),
              std::string_view("}}\n")})
            Say(STDOUT_FILENO, part);
    return static_cast<int>(status);
}

[[noreturn]] void End(std::string_view why) noexcept {
    constexpr int kChildsStatus = 127;
    if (getpid() != process) _exit(kChildsStatus);
    // Another thread is at it.
    while (isEnding.exchange(true))
        (void)pause();
    Unfinished::TakeAllAway();
    _exit(Tell(why));
}

/// What the exception was that nobody has caught.
std::string_view CauseOfEnd() noexcept {
    try {
        if (const std::exception_ptr exception = std::current_exception())
            std::rethrow_exception(exception);
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    } catch (...) {
        return kLibrary;
    }
    return kLibrary;
}

[[noreturn]] void OnTerminate() noexcept {
    End(CauseOfEnd());
}

void OnSignal(int number) {
    End(number == SIGABRT ? kLibrary : kTrap);
}

void OnExit() {
    if (!isOwnEnd) End(kLibrary);
}

void Handle(int number) {
    struct sigaction old {};
    struct sigaction action {};
    action.sa_handler = OnSignal;
    action.sa_flags = SA_ONSTACK;
    if (sigaction(number, nullptr, &old) == 0 && old.sa_handler == SIG_DFL)
        (void)sigaction(number, &action, nullptr);
}

} // namespace

void LastResort::Begin(bool json) {
    isJSON = json;
    process = getpid();
    static const StackForTheEnd stack;
    for (const int number : {SIGABRT, SIGTRAP, SIGSEGV, SIGBUS, SIGFPE, SIGILL})
        Handle(number);
    (void)std::set_terminate(OnTerminate);
    (void)std::atexit(OnExit);
}

void LastResort::Leave() {
    isOwnEnd = true;
}

void LastResort::Settle(ExitStatus status) {
    settledStatus = static_cast<int>(status);
}

int LastResort::OutOfMemory() noexcept {
    return Tell(kNoMemory);
}

void LastResort::EndWithoutMemory() noexcept {
    End(kNoMemory);
}

StackForTheEnd::StackForTheEnd() {
    stack_t stack{};
    stack.ss_sp = mMemory.data();
    stack.ss_size = mMemory.size();
    (void)sigaltstack(&stack, nullptr);
}

StackForTheEnd::~StackForTheEnd() {
    stack_t none{};
    none.ss_flags = SS_DISABLE;
    (void)sigaltstack(&none, nullptr);
}

void Unfinished::TakeAllAway() noexcept {
    for (Unfinished *one = list; one; one = one->mNext)
        one->mTakeAway(one->mWhat);
}

Unfinished::Unfinished(TakeAway takeAway, void *what) : mTakeAway(takeAway), mWhat(what) {
    const std::lock_guard lock(listMutex);
    mNext = list;
    list = this;
}

Unfinished::~Unfinished() {
    const std::lock_guard lock(listMutex);
    if (list == this) {
        list = mNext;
        return;
    }
    for (Unfinished *one = list; one; one = one->mNext)
        if (one->mNext == this) one->mNext = mNext;
}
