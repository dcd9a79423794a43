#include "host/readers/UnnamedFile.h"

#include "host/terminal/ExitStatus.h"
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

std::string TemporaryFolder() {
    const char *chosen = getenv("TMPDIR");
    return chosen && *chosen ? chosen : "/var/tmp";
}

} // namespace

UnnamedFile::UnnamedFile() : mFolder(TemporaryFolder()) {
    std::string path = mFolder + "/zelprint-XXXXXX";
    mDescriptor = mkstemp(path.data());
    if (mDescriptor < 0)
        throw HostError(ExitStatus::Output, "cannot make a temporary file in " + mFolder + ": " +
                                                strerror(errno) +
                                                "; name another folder in $TMPDIR");
    (void)unlink(path.c_str());
    (void)fcntl(mDescriptor, F_SETFD, FD_CLOEXEC);
}

UnnamedFile::~UnnamedFile() {
    (void)close(mDescriptor);
}

std::string UnnamedFile::Path() const {
    return "/dev/fd/" + std::to_string(mDescriptor);
}

uint64_t UnnamedFile::Room() const {
    struct statvfs info {};
    if (fstatvfs(mDescriptor, &info) != 0) return 0;
    return static_cast<uint64_t>(info.f_bavail) * info.f_frsize;
}

bool UnnamedFile::Write(const void *bytes, size_t count, uint64_t at) const {
    const auto *next = static_cast<const char *>(bytes);
    while (count > 0) {
        const ssize_t written = pwrite(mDescriptor, next, count, static_cast<off_t>(at));
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        next += written;
        at += static_cast<uint64_t>(written);
        count -= static_cast<size_t>(written);
    }
    return true;
}

bool UnnamedFile::Read(void *bytes, size_t count, uint64_t at) const {
    auto *next = static_cast<char *>(bytes);
    while (count > 0) {
        const ssize_t got = pread(mDescriptor, next, count, static_cast<off_t>(at));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return false;
        next += got;
        at += static_cast<uint64_t>(got);
        count -= static_cast<size_t>(got);
    }
    return true;
}

void UnnamedFile::Truncate(uint64_t size) const {
    (void)!ftruncate(mDescriptor, static_cast<off_t>(size));
}
