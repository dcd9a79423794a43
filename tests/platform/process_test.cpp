// Running programs.
#include "tests/TempFolder.h"
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <platform/Platform.h>
#include <sys/wait.h>
#include <unistd.h>

static int RunProgram(const char *program, const std::vector<const char *> &arguments) {
    return PlatformRunTask(program, arguments.data(), int(arguments.size()));
}

TEST(RunTask, ReturnsTheExitStatus) {
    for (const int status : {0, 1, 7, 255})
        EXPECT_EQ(RunProgram("/bin/sh", {"-c", ("exit " + std::to_string(status)).c_str()}),
                  status);
}

TEST(RunTask, ProgramThatCannotBeStartedIsOne) {
    const TempFolder folder;
    std::ofstream(folder.Path() / "plain") << "no program";
    EXPECT_EQ(RunProgram("/nonexistent/lpr", {}), 1);
    EXPECT_EQ(RunProgram(folder.Path().c_str(), {}), 1);
    EXPECT_EQ(RunProgram((folder.Path() / "plain").c_str(), {}), 1);
}

TEST(RunTask, ProgramEndedByASignalIsOne) {
    EXPECT_EQ(RunProgram("/bin/sh", {"-c", "kill -KILL $$"}), 1);
}

TEST(RunTask, ArgumentsArriveByteForByte) {
    const TempFolder folder;
    const std::string out = (folder.Path() / "out").string();
    EXPECT_EQ(RunProgram("/bin/sh", {"-c", "for a; do printf '[%s]' \"$a\"; done >\"$0\"",
                                     out.c_str(), "a b", "", "$HOME;*", "caf\xc3\xa9", "\xff"}),
              0);
    EXPECT_EQ(folder.Read("out"), "[a b][][$HOME;*][caf\xc3\xa9][\xff]");
}

TEST(RunTask, EnvironmentIsHandedOn) {
    setenv("ZEL_PROCESS_TEST", "here", 1);
    EXPECT_EQ(RunProgram("/bin/sh", {"-c", "test \"$ZEL_PROCESS_TEST\" = here"}), 0);
    unsetenv("ZEL_PROCESS_TEST");
}

TEST(RunTask, HostsOtherChildrenAreLeftToTheHost) {
    const pid_t child = fork();
    if (child == 0) _exit(42);
    EXPECT_EQ(RunProgram("/bin/sh", {"-c", "sleep 0.2"}), 0);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 42);
}

static volatile sig_atomic_t gInterruptions;

TEST(RunTask, InterruptionsDoNotEndTheWaiting) {
    struct sigaction action = {}, old = {};
    action.sa_handler = [](int) { gInterruptions = gInterruptions + 1; };
    sigaction(SIGCHLD, &action, &old);
    const pid_t child = fork();
    if (child == 0) {
        usleep(50000);
        _exit(0);
    }
    EXPECT_EQ(RunProgram("/bin/sh", {"-c", "sleep 0.3; exit 9"}), 9);
    sigaction(SIGCHLD, &old, nullptr);
    EXPECT_GE(gInterruptions, 1);
    waitpid(child, nullptr, 0);
}

TEST(KeepFreedMemory, AllocationGoesOnAsBefore) {
    PlatformKeepFreedMemory(1 << 24);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(std::string(1 << 22, 'x').back(), 'x');
}

TEST(DisableFileCache, LeavesTheFileAsItIs) {
    FILE *file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    ASSERT_EQ(write(fileno(file), "page", 4), 4);
    PlatformDisableFileCache(fileno(file));
    PlatformDisableFileCache(-1); // a hint that cannot be taken is none
    ASSERT_EQ(write(fileno(file), "s", 1), 1);
    char text[8] = {};
    EXPECT_EQ(pread(fileno(file), text, sizeof text, 0), 5);
    EXPECT_STREQ(text, "pages");
    (void)std::fclose(file);
}
