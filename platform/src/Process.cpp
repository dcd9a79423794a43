// Running a program.
//
// Not NSTask: GNUstep's replaces the process's SIGCHLD handler by one that collects every child,
// the host's own included, and its waiting runs the caller's run loop, which may re-enter the
// driver.
#include <cerrno>
#include <platform/Platform.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#ifdef __APPLE__ // where shared libraries have no environ
#include <crt_externs.h>
#define environ (*_NSGetEnviron())
#endif

namespace {

/// Exit status of the child; 1 when a signal ended it or when it cannot be told.
int WaitFor(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR) return 1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

} // namespace

int PlatformRunTask(const char *program, const char *const *arguments, int count) {
    std::vector<char *> argv{const_cast<char *>(program)};
    for (int i = 0; i < count; ++i)
        argv.push_back(const_cast<char *>(arguments[i]));
    argv.push_back(nullptr);
    pid_t child = 0;
    if (posix_spawn(&child, program, nullptr, nullptr, argv.data(), environ) != 0) return 1;
    return WaitFor(child);
}
