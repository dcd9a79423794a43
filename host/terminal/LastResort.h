/// The end of a program that cannot go on: memory is out where nobody can be told of it, or a
/// library gives up and ends the process. It is then as with any other failure: one line, a
/// documented status, and nothing unfinished left behind.
#pragma once

#include "host/terminal/ExitStatus.h"
#include <array>

class LastResort {
public:
    /// From now on an uncaught exception, abort, a trap of the processor, and exit called by
    /// anybody but the program itself lead to this end (and to JSON on standard output, if `json`).
    /// Signals that somebody has claimed before, a sanitizer for one, stay his. To be called once.
    static void Begin(bool json);
    /// The program ends by itself: exit is no accident from now on.
    static void Leave();
    /// The document is in its place: whatever comes leads to `status`.
    static void Settle(ExitStatus status);
    /// Says that memory is out, without taking any. Returns the exit status.
    [[nodiscard]] static int OutOfMemory() noexcept;
    /// Ends the program at once because memory is out, nothing unfinished left.
    [[noreturn]] static void EndWithoutMemory() noexcept;
};

/// The first thing in a thread of ours: where its stack runs full, the end has room on this one.
class StackForTheEnd {
public:
    StackForTheEnd();
    ~StackForTheEnd();
    StackForTheEnd(const StackForTheEnd &) = delete;
    StackForTheEnd &operator=(const StackForTheEnd &) = delete;

private:
    std::array<char, 1 << 15> mMemory;
};

/// While one lives, there is something that must not outlive the process.
class Unfinished {
public:
    /// Takes `what` away: with calls of the system alone that a signal handler may make. May be
    /// called beside any other thread of the process, and before the owner takes the same away.
    using TakeAway = void (*)(void *what) noexcept;
    Unfinished(TakeAway takeAway, void *what);
    ~Unfinished();
    Unfinished(const Unfinished &) = delete;
    Unfinished &operator=(const Unfinished &) = delete;

    /// Takes everything away for which there is one: the process is about to end.
    static void TakeAllAway() noexcept;

private:
    TakeAway mTakeAway;
    void *mWhat;
    Unfinished *mNext = nullptr;
};
