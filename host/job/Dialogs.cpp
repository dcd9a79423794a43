#include "host/job/Dialogs.h"

#include "host/terminal/Cancellation.h"
#include "host/terminal/Console.h"
#include "host/terminal/ExitStatus.h"
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <unistd.h>

namespace {

/// How long a wish to cancel may go unnoticed, and the time between two attempts to close a window.
constexpr std::chrono::milliseconds kPatience{100};
/// After that many attempts the dialog is not waited for any longer.
constexpr int kMostAttempts = 50;

std::atomic<bool> windowsAreUsed{false};

/// Where cleaning up is over and nothing but the program's end is left.
[[noreturn]] void EndAtOnce(ExitStatus status, const char *message) {
    ComplainOfFailure(message);
    (void)fflush(nullptr);
    _exit(static_cast<int>(status));
}

/// The window system's library ends the program when it loses its connection.
void EndWithoutWindows() {
    if (windowsAreUsed)
        EndAtOnce(ExitStatus::Driver, "the window system has gone; nothing was printed");
}

/// While it lives, signals that ask the program to end cancel the dialog instead.
class DialogWatch {
public:
    explicit DialogWatch(void (*cancel)()) : mCancel(cancel), mThread([this] { Watch(); }) {}
    ~DialogWatch() {
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            mIsOver = true;
        }
        mOver.notify_one();
        mThread.join();
    }
    DialogWatch(const DialogWatch &) = delete;
    DialogWatch &operator=(const DialogWatch &) = delete;

private:
    void Watch() {
        int attempts = 0;
        std::unique_lock<std::mutex> lock(mMutex);
        while (!mOver.wait_for(lock, kPatience, [this] { return mIsOver; })) {
            if (!Cancellation::IsWanted()) continue;
            if (++attempts > kMostAttempts)
                EndAtOnce(Cancellation::Status(), "cancelled; nothing was printed");
            mCancel();
        }
    }

    const Cancellation mCancellation;
    void (*mCancel)();
    std::mutex mMutex;
    std::condition_variable mOver;
    bool mIsOver = false;
    std::thread mThread;
};

} // namespace

WindowSystem::WindowSystem(const DriverBundle &bundle) {
    ZEL_CALL(bundle, ZELPrUseWindows)(true);
    if (!ZEL_CALL(bundle, ZELPrCanShowDialogs)())
        throw HostError(ExitStatus::Usage,
                        "there is no window system for a dialog; choose with options instead");
    static const bool isSaid = std::atexit(EndWithoutWindows) == 0;
    windowsAreUsed = isSaid;
}

WindowSystem::~WindowSystem() {
    windowsAreUsed = false;
}

void RunDialog(const DriverSession &session, Boolean (*dialog)(DriverContext *, Handle),
               Handle record) {
    const DriverBundle &bundle = session.Bundle();
    const DialogWatch watch(ZEL_CALL(bundle, ZELPrCancelDialog));
    const bool confirmed = dialog(session.Context(), record);
    if (Cancellation::IsWanted())
        throw HostError(Cancellation::Status(), "cancelled; nothing was printed");
    if (confirmed) return;
    if (ZEL_CALL(bundle, ZELPrDialogFailed)())
        throw HostError(ExitStatus::Driver,
                        "the driver cannot show its dialog; choose with options instead");
    throw HostError(ExitStatus::Cancelled, "cancelled in the dialog; nothing was printed");
}
