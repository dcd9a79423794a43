// The times of a file, whose fields have other names on each system.
#include <platform/Platform.h>

FileTimes PlatformTimesOf(const struct stat &info) {
#ifdef __APPLE__
    return {info.st_mtimespec, info.st_ctimespec};
#else
    return {info.st_mtim, info.st_ctim};
#endif
}
