// Renaming that replaces nothing, in one step.
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <platform/Platform.h>

int PlatformMoveWithoutReplacing(const std::string &from, const std::string &to) {
#ifdef __APPLE__
    const int result = renamex_np(from.c_str(), to.c_str(), RENAME_EXCL);
#else
    const int result = renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE);
#endif
    return result == 0 ? 0 : errno;
}
