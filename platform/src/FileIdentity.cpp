#include "FileIdentity.h"
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

std::optional<FileIdentity> IdentityOf(const std::string &path) {
    struct statx info {};
    if (statx(AT_FDCWD, path.c_str(), 0, STATX_INO | STATX_BTIME, &info) != 0) return {};
    FileIdentity identity;
    identity.device = static_cast<int64_t>(makedev(info.stx_dev_major, info.stx_dev_minor));
    identity.inode = static_cast<int64_t>(info.stx_ino);
    if (info.stx_mask & STATX_BTIME)
        identity.born = info.stx_btime.tv_sec * 1000000000LL + info.stx_btime.tv_nsec;
    return identity;
}

bool IsSameFile(const FileIdentity &a, const FileIdentity &b) {
    if (a.inode != b.inode) return false;
    return a.born != 0 && b.born != 0 ? a.born == b.born : a.device == b.device;
}
