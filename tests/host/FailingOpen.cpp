// To be loaded before a program: its first attempt to create a document fails as if it had too many
// files open.
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>

namespace {

bool hasFailed = false;

bool IsDocument(const char *path) {
    const char *point = strrchr(path, '.');
    return point && (strcmp(point, ".ps") == 0 || strcmp(point, ".eps") == 0);
}

} // namespace

extern "C" __attribute__((visibility("default"))) int open(const char *path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const auto mode = static_cast<mode_t>((flags & O_CREAT) != 0 ? va_arg(arguments, int) : 0);
    va_end(arguments);
    if (!hasFailed && (flags & O_EXCL) != 0 && IsDocument(path)) {
        hasFailed = true;
        (void)fputs("one open has failed\n", stderr);
        errno = EMFILE;
        return -1;
    }
    using Open = int(const char *, int, ...);
    return reinterpret_cast<Open *>(dlsym(RTLD_NEXT, "open"))(path, flags, mode);
}
