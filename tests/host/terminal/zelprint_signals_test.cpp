// Signals at moments other than in the middle of a page.
#include "tests/host/CommandFixture.h"

#include <chrono>
#include <csignal>
#include <sys/wait.h>
#include <thread>

namespace {

using std::chrono::milliseconds;

class Signals : public Command {
protected:
    [[nodiscard]] pid_t StartJob() const {
        return mPlace.Start({"--built-in-printer", "--eps", "--media", "40x50pt", "--colour-space",
                             "gray", "--hot-folder", mPlace.Hot(), Source()});
    }
    static int Await(pid_t child) {
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
};

TEST_F(Signals, AtAnyMoment_EndTheJobOrChangeNothing) {
    int cancelled = 0;
    for (const auto &[signal, status] : {std::pair(SIGTERM, 143), std::pair(SIGINT, 130)})
        for (int delay = 0; delay < 400; delay += 20) {
            const size_t before = mPlace.HotFiles().size();
            const pid_t child = StartJob();
            std::this_thread::sleep_for(milliseconds(delay));
            (void)kill(child, signal);
            const int result = Await(child);
            EXPECT_TRUE(result == status || result == 0) << result << " after " << delay;
            EXPECT_EQ(mPlace.HotFiles().size(), before + (result == 0 ? 1 : 0)) << delay;
            EXPECT_EQ(mPlace.Leftovers(), Names{}) << delay;
            cancelled += result == status ? 1 : 0;
        }
    EXPECT_GT(cancelled, 0);
}

TEST_F(Signals, AsSoonAsTheDocumentIsThere_ChangeNothing) {
    for (int i = 0; i < 10; ++i) {
        const size_t before = mPlace.HotFiles().size();
        const pid_t child = StartJob();
        for (int look = 0; look < 100000 && mPlace.HotFiles().size() == before; ++look)
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        (void)kill(child, SIGTERM);
        EXPECT_EQ(Await(child), 0);
    }
}

} // namespace
