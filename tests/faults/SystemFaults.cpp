// A library for LD_PRELOAD: one class of the system's calls fails in a program, from its main on.
//   ZEL_FAULT         CLASS:N:once or CLASS:N:always; the N-th call fails, or it and all behind it.
//   N of 0
//                     only counts. The classes are in the table below.
//   ZEL_FAULT_REPORT  a file of 16 bytes that receives two numbers: calls made, and calls that
//   failed ZEL_FAULT_TRACE   if set, the first call that fails shows on standard error who made it
//   ZEL_FAULT_LPR     a program that runs in the place of /usr/bin/lpr
// Programs that it starts run without it. What happens before main, the loader's and the libraries'
// own start, is the system's: nothing of the program can answer for it.
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <iterator>
#include <pthread.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

enum class Class {
    None,
    Open,
    Write,
    ShortWrite,
    Close,
    Sync,
    Rename,
    Link,
    MakeFolder,
    Stat,
    Map,
    Allocate,
    Thread,
    Start,
    Symbol,
};

struct Fault {
    const char *name;
    Class kind;
    int error; ///< what errno is set to
};

constexpr Fault kFaults[] = {
    {"open", Class::Open, EMFILE},         {"write", Class::Write, ENOSPC},
    {"short-write", Class::ShortWrite, 0}, {"close", Class::Close, EIO},
    {"fsync", Class::Sync, EIO},           {"rename", Class::Rename, EIO},
    {"link", Class::Link, EPERM},          {"mkdir", Class::MakeFolder, ENOSPC},
    {"stat", Class::Stat, EACCES},         {"mmap", Class::Map, ENOMEM},
    {"malloc", Class::Allocate, ENOMEM},   {"pthread_create", Class::Thread, EAGAIN},
    {"posix_spawn", Class::Start, EAGAIN}, {"dlsym", Class::Symbol, 0},
};

struct Report {
    std::atomic<uint64_t> calls, failed;
};

// Constant-initialized: the functions below run before this library's constructors.
Fault gFault = {nullptr, Class::None, 0};
uint64_t gFirst = 0;
bool gAlways = false;
bool gTraces = false;
const char *gLpr = nullptr;
Report gNobodys = {};
Report *gReport = &gNobodys;
std::atomic<bool> gRuns{false};

/// dlsym cannot be asked for itself where this library stands before it.
void *SystemsSymbol(const char *name) {
    for (const char *version : {"GLIBC_2.34", "GLIBC_2.2.5", "GLIBC_2.17"})
        if (void *symbol = dlvsym(RTLD_NEXT, name, version)) return symbol;
    return nullptr;
}

template <typename Function>
Function *Original(Function * /*ours*/, const char *name) {
    using Symbol = void *(void *, const char *);
    static auto *const find = reinterpret_cast<Symbol *>(SystemsSymbol("dlsym"));
    return reinterpret_cast<Function *>(find(RTLD_NEXT, name));
}

void ShowCaller() {
    const bool ran = gRuns.exchange(false);
    void *frames[40];
    backtrace_symbols_fd(frames, backtrace(frames, 40), STDERR_FILENO);
    gRuns = ran;
}

/// Whether this call of the class has to fail; errno is set then.
bool Fails(Class kind) {
    if (kind != gFault.kind || !gRuns) return false;
    const uint64_t number = ++gReport->calls;
    const bool fails = gFirst > 0 && (gAlways ? number >= gFirst : number == gFirst);
    if (!fails) return false;
    if (gReport->failed++ == 0 && gTraces) ShowCaller();
    errno = gFault.error;
    return true;
}

/// How many bytes of `count` a write takes.
size_t Taken(size_t count) {
    return count > 1 && Fails(Class::ShortWrite) ? count / 2 : count;
}

void ReadFault() {
    const char *wish = getenv("ZEL_FAULT");
    char name[32] = "";
    char when[8] = "";
    if (!wish || sscanf(wish, "%31[^:]:%lu:%7s", name, &gFirst, when) != 3) return;
    for (const Fault &fault : kFaults)
        if (strcmp(fault.name, name) == 0) gFault = fault;
    gAlways = strcmp(when, "always") == 0;
    gTraces = getenv("ZEL_FAULT_TRACE") != nullptr;
    gLpr = getenv("ZEL_FAULT_LPR");
    const char *report = getenv("ZEL_FAULT_REPORT");
    const int fd = report ? static_cast<int>(syscall(SYS_openat, AT_FDCWD, report, O_RDWR)) : -1;
    if (fd < 0 || gFault.kind == Class::None) {
        static const char problem[] = "SystemFaults: nobody can be told\n";
        (void)syscall(SYS_write, STDERR_FILENO, problem, sizeof problem - 1);
        _exit(126);
    }
    const auto address = syscall(SYS_mmap, nullptr, sizeof(Report), long{PROT_READ | PROT_WRITE},
                                 long{MAP_SHARED}, long{fd}, 0L);
    gReport = reinterpret_cast<Report *>(address);
    (void)syscall(SYS_close, fd);
    void *frames[2];
    (void)backtrace(frames, 2); // loads what it needs now
    (void)unsetenv("LD_PRELOAD");
}

int (*gMain)(int, char **, char **) = nullptr;

/// GNUstep's own configuration is the test's: without it files would go to another home.
void ReadConfiguration() {
    using Folders = void *(unsigned long, unsigned long, signed char);
    void *const folders = dlsym(RTLD_DEFAULT, "NSSearchPathForDirectoriesInDomains");
    constexpr unsigned long kLibrary = 5;
    constexpr unsigned long kUser = 1;
    if (folders) (void)reinterpret_cast<Folders *>(folders)(kLibrary, kUser, 1);
}

int RunMain(int argc, char **argv, char **environment) {
    ReadFault();
    ReadConfiguration();
    gRuns = gFault.kind != Class::None;
    return gMain(argc, argv, environment);
}

template <typename Value>
Value Argument(int flags, va_list arguments) {
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, Value) : Value{};
}

} // namespace

// A function of the system that fails with -1, or with what is said, in the calls that are to fail.
#define ZEL_FAULTY_OR(failure, kind, result, name, parameters, arguments)                          \
    extern "C" result name parameters {                                                            \
        static auto *const original = Original(&name, #name);                                      \
        if (Fails(kind)) return failure;                                                           \
        return original arguments;                                                                 \
    }
#define ZEL_FAULTY(kind, result, name, parameters, arguments)                                      \
    ZEL_FAULTY_OR(-1, kind, result, name, parameters, arguments)

#define ZEL_FAULTY_OPEN(name)                                                                      \
    extern "C" int name(const char *path, int flags, ...) {                                        \
        static auto *const original = Original(&name, #name);                                      \
        va_list arguments;                                                                         \
        va_start(arguments, flags);                                                                \
        const auto mode = Argument<mode_t>(flags, arguments);                                      \
        va_end(arguments);                                                                         \
        if (Fails(Class::Open)) return -1;                                                         \
        return original(path, flags, mode);                                                        \
    }
#define ZEL_FAULTY_OPENAT(name)                                                                    \
    extern "C" int name(int folder, const char *path, int flags, ...) {                            \
        static auto *const original = Original(&name, #name);                                      \
        va_list arguments;                                                                         \
        va_start(arguments, flags);                                                                \
        const auto mode = Argument<mode_t>(flags, arguments);                                      \
        va_end(arguments);                                                                         \
        if (Fails(Class::Open)) return -1;                                                         \
        return original(folder, path, flags, mode);                                                \
    }

#pragma GCC visibility push(default)
#pragma clang diagnostic ignored "-Wvarargs"

extern "C" int __libc_start_main(int (*main)(int, char **, char **), int argc, char **argv,
                                 void (*init)(), void (*fini)(), void (*loader)(), void *stack);
extern "C" int __libc_start_main(int (*main)(int, char **, char **), int argc, char **argv,
                                 void (*init)(), void (*fini)(), void (*loader)(), void *stack) {
    gMain = main;
    return Original(&__libc_start_main, "__libc_start_main")(RunMain, argc, argv, init, fini,
                                                             loader, stack);
}

ZEL_FAULTY_OPEN(open)
ZEL_FAULTY_OPEN(open64)
ZEL_FAULTY_OPENAT(openat)
ZEL_FAULTY_OPENAT(openat64)
ZEL_FAULTY_OR(nullptr, Class::Open, FILE *, fopen, (const char *path, const char *mode),
              (path, mode))
ZEL_FAULTY_OR(nullptr, Class::Open, FILE *, fopen64, (const char *path, const char *mode),
              (path, mode))
ZEL_FAULTY_OR(nullptr, Class::Open, FILE *, tmpfile, (), ())
ZEL_FAULTY_OR(nullptr, Class::Open, FILE *, tmpfile64, (), ())
ZEL_FAULTY_OR(nullptr, Class::Open, DIR *, opendir, (const char *path), (path))
ZEL_FAULTY_OR(nullptr, Class::Open, DIR *, fdopendir, (int fd), (fd))
ZEL_FAULTY(Class::Open, int, mkstemp, (char *path), (path))
ZEL_FAULTY(Class::Open, int, mkstemp64, (char *path), (path))
ZEL_FAULTY(Class::Open, int, pipe, (int *ends), (ends))
ZEL_FAULTY(Class::Open, int, pipe2, (int *ends, int flags), (ends, flags))

extern "C" ssize_t write(int fd, const void *bytes, size_t count) {
    static auto *const original = Original(&write, "write");
    return Fails(Class::Write) ? -1 : original(fd, bytes, Taken(count));
}
extern "C" ssize_t pwrite(int fd, const void *bytes, size_t count, off_t offset) {
    static auto *const original = Original(&pwrite, "pwrite");
    return Fails(Class::Write) ? -1 : original(fd, bytes, Taken(count), offset);
}
extern "C" ssize_t pwrite64(int fd, const void *bytes, size_t count, off64_t offset) {
    static auto *const original = Original(&pwrite64, "pwrite64");
    return Fails(Class::Write) ? -1 : original(fd, bytes, Taken(count), offset);
}
ZEL_FAULTY(Class::Write, ssize_t, writev, (int fd, const iovec *parts, int count),
           (fd, parts, count))
// The library of C writes past the function above.
ZEL_FAULTY_OR(0, Class::Write, size_t, fwrite,
              (const void *bytes, size_t size, size_t count, FILE *file),
              (bytes, size, count, file))
ZEL_FAULTY_OR(EOF, Class::Write, int, fputs, (const char *text, FILE *file), (text, file))
ZEL_FAULTY_OR(EOF, Class::Write, int, fflush, (FILE * file), (file))

// What fails to close is closed all the same.
extern "C" int close(int fd) {
    static auto *const original = Original(&close, "close");
    const int result = original(fd);
    return Fails(Class::Close) ? -1 : result;
}
extern "C" int fclose(FILE *file) {
    static auto *const original = Original(&fclose, "fclose");
    const int result = original(file);
    return Fails(Class::Close) ? EOF : result;
}

ZEL_FAULTY(Class::Sync, int, fsync, (int fd), (fd))
ZEL_FAULTY(Class::Sync, int, fdatasync, (int fd), (fd))
ZEL_FAULTY(Class::Rename, int, rename, (const char *from, const char *to), (from, to))
ZEL_FAULTY(Class::Rename, int, renameat,
           (int fromFolder, const char *from, int toFolder, const char *to),
           (fromFolder, from, toFolder, to))
ZEL_FAULTY(Class::Rename, int, renameat2,
           (int fromFolder, const char *from, int toFolder, const char *to, unsigned int flags),
           (fromFolder, from, toFolder, to, flags))
ZEL_FAULTY(Class::Link, int, link, (const char *from, const char *to), (from, to))
ZEL_FAULTY(Class::Link, int, linkat,
           (int fromFolder, const char *from, int toFolder, const char *to, int flags),
           (fromFolder, from, toFolder, to, flags))
ZEL_FAULTY(Class::MakeFolder, int, mkdir, (const char *path, mode_t mode), (path, mode))
ZEL_FAULTY(Class::MakeFolder, int, mkdirat, (int folder, const char *path, mode_t mode),
           (folder, path, mode))
ZEL_FAULTY_OR(nullptr, Class::MakeFolder, char *, mkdtemp, (char *path), (path))

using Stat = struct stat;
using Stat64 = struct stat64;
using StatVFS = struct statvfs;
using StatVFS64 = struct statvfs64;
using StatX = struct statx;
ZEL_FAULTY(Class::Stat, int, stat, (const char *path, Stat *info), (path, info))
ZEL_FAULTY(Class::Stat, int, lstat, (const char *path, Stat *info), (path, info))
ZEL_FAULTY(Class::Stat, int, fstat, (int fd, Stat *info), (fd, info))
ZEL_FAULTY(Class::Stat, int, fstatat, (int folder, const char *path, Stat *info, int flags),
           (folder, path, info, flags))
ZEL_FAULTY(Class::Stat, int, stat64, (const char *path, Stat64 *info), (path, info))
ZEL_FAULTY(Class::Stat, int, lstat64, (const char *path, Stat64 *info), (path, info))
ZEL_FAULTY(Class::Stat, int, fstat64, (int fd, Stat64 *info), (fd, info))
ZEL_FAULTY(Class::Stat, int, fstatat64, (int folder, const char *path, Stat64 *info, int flags),
           (folder, path, info, flags))
ZEL_FAULTY(Class::Stat, int, statx,
           (int folder, const char *path, int flags, unsigned int mask, StatX *info),
           (folder, path, flags, mask, info))
ZEL_FAULTY(Class::Stat, int, statvfs, (const char *path, StatVFS *info), (path, info))
ZEL_FAULTY(Class::Stat, int, fstatvfs, (int fd, StatVFS *info), (fd, info))
ZEL_FAULTY(Class::Stat, int, statvfs64, (const char *path, StatVFS64 *info), (path, info))
ZEL_FAULTY(Class::Stat, int, fstatvfs64, (int fd, StatVFS64 *info), (fd, info))

ZEL_FAULTY_OR(MAP_FAILED, Class::Map, void *, mmap,
              (void *at, size_t size, int protection, int flags, int fd, off_t offset),
              (at, size, protection, flags, fd, offset))
ZEL_FAULTY_OR(MAP_FAILED, Class::Map, void *, mmap64,
              (void *at, size_t size, int protection, int flags, int fd, off64_t offset),
              (at, size, protection, flags, fd, offset))

// Memory is asked for before anything can be looked up.
extern "C" void *__libc_malloc(size_t size);
extern "C" void *__libc_calloc(size_t count, size_t size);
extern "C" void *__libc_realloc(void *block, size_t size);
extern "C" void *__libc_memalign(size_t alignment, size_t size);
extern "C" void *__libc_valloc(size_t size);
extern "C" void *malloc(size_t size) {
    return Fails(Class::Allocate) ? nullptr : __libc_malloc(size);
}
extern "C" void *calloc(size_t count, size_t size) {
    return Fails(Class::Allocate) ? nullptr : __libc_calloc(count, size);
}
extern "C" void *realloc(void *block, size_t size) {
    return Fails(Class::Allocate) ? nullptr : __libc_realloc(block, size);
}
extern "C" void *memalign(size_t alignment, size_t size) {
    return Fails(Class::Allocate) ? nullptr : __libc_memalign(alignment, size);
}
extern "C" void *aligned_alloc(size_t alignment, size_t size) {
    return Fails(Class::Allocate) ? nullptr : __libc_memalign(alignment, size);
}
extern "C" void *valloc(size_t size) {
    return Fails(Class::Allocate) ? nullptr : __libc_valloc(size);
}
extern "C" int posix_memalign(void **block, size_t alignment, size_t size) {
    void *const memory = Fails(Class::Allocate) ? nullptr : __libc_memalign(alignment, size);
    if (memory) *block = memory;
    return memory ? 0 : ENOMEM;
}

ZEL_FAULTY_OR(gFault.error, Class::Thread, int, pthread_create,
              (pthread_t * thread, const pthread_attr_t *attributes, void *(*body)(void *),
               void *argument),
              (thread, attributes, body, argument))

ZEL_FAULTY(Class::Start, pid_t, fork, (), ())
extern "C" int posix_spawn(pid_t *child, const char *path,
                           const posix_spawn_file_actions_t *actions,
                           const posix_spawnattr_t *attributes, char *const *arguments,
                           char *const *environment) {
    static auto *const original = Original(&posix_spawn, "posix_spawn");
    if (Fails(Class::Start)) return gFault.error;
    const bool replaced = gLpr && strcmp(path, "/usr/bin/lpr") == 0;
    return original(child, replaced ? gLpr : path, actions, attributes, arguments, environment);
}
ZEL_FAULTY_OR(gFault.error, Class::Start, int, posix_spawnp,
              (pid_t * child, const char *program, const posix_spawn_file_actions_t *actions,
               const posix_spawnattr_t *attributes, char *const *arguments,
               char *const *environment),
              (child, program, actions, attributes, arguments, environment))

extern "C" void *dlsym(void *library, const char *name) {
    static auto *const original = reinterpret_cast<decltype(&dlsym)>(SystemsSymbol("dlsym"));
    // So that dlerror has something to say.
    return original(library, Fails(Class::Symbol) ? "a symbol that is nowhere" : name);
}

#pragma GCC visibility pop
