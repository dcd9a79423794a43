// Running a program, and hints about files and memory.
//
// Not NSTask: GNUstep's replaces the process's SIGCHLD handler by one that collects every child,
// the host's own included, and its waiting runs the caller's run loop, which may re-enter the
// driver.
#include <cerrno>
#include <fcntl.h>
#include <platform/Platform.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#ifdef __APPLE__ // where shared libraries have no environ
#include <crt_externs.h>
#define environ (*_NSGetEnviron())
#endif

#ifdef __GLIBC__
#include <malloc.h>
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

void PlatformDisableFileCache(int fd) {
#ifdef F_NOCACHE
    (void)fcntl(fd, F_NOCACHE, 1);
#else
    // Output is written once and not read back. Linux has no F_NOCACHE; this is its nearest hint.
    (void)posix_fadvise(fd, 0, 0, POSIX_FADV_NOREUSE);
#endif
}

void PlatformKeepFreedMemory(int bytes) {
#ifdef __GLIBC__
    // One arena: those of other threads give their memory back whatever they are told.
    (void)mallopt(M_ARENA_MAX, 1);
    // Blocks of their own mapping would go back one by one.
    (void)mallopt(M_MMAP_THRESHOLD, bytes);
    (void)mallopt(M_TRIM_THRESHOLD, bytes);
#else
    (void)bytes; // other allocators decide for themselves
#endif
}
