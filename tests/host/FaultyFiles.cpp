// A library for LD_PRELOAD: makes the system misbehave with the files whose paths contain
// $ZEL_FAULT_PATH, from the byte $ZEL_FAULT_AT on. $ZEL_FAULT is
//   short-write  the one write that reaches that byte stops before it and reports what it wrote
//   read-error   nothing from that byte on can be read (EIO)
//   list-error   the entry of folders with that number, from 1 on, cannot be read (EIO)
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <string>
#include <sys/types.h>
#include <unistd.h>

namespace {

bool IsWanted(const char *fault) {
    const char *wanted = getenv("ZEL_FAULT");
    return wanted && strcmp(wanted, fault) == 0;
}

bool IsMeant(int fd) {
    const char *part = getenv("ZEL_FAULT_PATH");
    const std::string link = "/proc/self/fd/" + std::to_string(fd);
    char path[PATH_MAX] = {};
    return part && readlink(link.c_str(), path, sizeof path - 1) > 0 && strstr(path, part);
}

off_t FaultyByte() {
    const char *at = getenv("ZEL_FAULT_AT");
    return at ? atoll(at) : 0;
}

template <typename Function>
Function *Original(const char *name) {
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

/// How many bytes of `count` from `offset` can be read; -1 with errno set when there is none.
ssize_t Readable(int fd, size_t count, off_t offset) {
    if (!IsWanted("read-error") || !IsMeant(fd)) return static_cast<ssize_t>(count);
    const off_t good = FaultyByte() - offset;
    if (good >= static_cast<off_t>(count)) return static_cast<ssize_t>(count);
    if (good > 0) return good;
    errno = EIO;
    return -1;
}

ssize_t ReadAt(const char *name, int fd, void *bytes, size_t count, off_t offset) {
    const ssize_t readable = Readable(fd, count, offset);
    if (readable < 0) return readable;
    return Original<ssize_t(int, void *, size_t, off_t)>(name)(
        fd, bytes, static_cast<size_t>(readable), offset);
}

std::atomic<bool> hasBeenShort{false};

/// How many bytes of `count` the next write takes.
size_t Writable(int fd, size_t count) {
    if (!IsWanted("short-write") || hasBeenShort || !IsMeant(fd)) return count;
    const off_t offset = lseek(fd, 0, SEEK_CUR);
    const off_t good = FaultyByte() - offset;
    if (offset < 0 || good <= 0 || good >= static_cast<off_t>(count)) return count;
    hasBeenShort = true;
    return static_cast<size_t>(good);
}

} // namespace

#pragma GCC visibility push(default)

extern "C" ssize_t read(int fd, void *bytes, size_t count) {
    static auto *const original = Original<ssize_t(int, void *, size_t)>("read");
    if (!getenv("ZEL_FAULT")) return original(fd, bytes, count);
    const ssize_t readable = Readable(fd, count, lseek(fd, 0, SEEK_CUR));
    return readable < 0 ? readable : original(fd, bytes, static_cast<size_t>(readable));
}

extern "C" ssize_t pread(int fd, void *bytes, size_t count, off_t offset) {
    return ReadAt("pread", fd, bytes, count, offset);
}

extern "C" ssize_t pread64(int fd, void *bytes, size_t count, off64_t offset) {
    return ReadAt("pread64", fd, bytes, count, offset);
}

extern "C" dirent *readdir(DIR *folder) {
    static auto *const original = Original<dirent *(DIR *)>("readdir");
    static std::atomic<off_t> entries{0};
    if (!IsWanted("list-error") || !IsMeant(dirfd(folder)) || ++entries != FaultyByte())
        return original(folder);
    errno = EIO;
    return nullptr;
}

extern "C" ssize_t write(int fd, const void *bytes, size_t count) {
    static auto *const original = Original<ssize_t(int, const void *, size_t)>("write");
    return original(fd, bytes, Writable(fd, count));
}

#pragma GCC visibility pop
