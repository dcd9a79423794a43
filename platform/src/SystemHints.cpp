// What the system is told of files and memory: nothing depends on it but speed.
#include <fcntl.h>
#include <platform/Platform.h>

#ifdef __GLIBC__
#include <malloc.h>
#endif

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
