// Group and access rights that a folder gives to what is made in it.
#include <cerrno>
#include <platform/Platform.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace {

#ifdef __APPLE__ // where every folder hands on its group, and lists of rights are handed on by
                 // copying
int CopyDefaultRights(const std::string &, const std::string &) {
    return 0;
}
bool HandsOnItsGroup(const struct stat &) {
    return true;
}
#else
const char kDefaultRights[] = "system.posix_acl_default";

int CopyDefaultRights(const std::string &from, const std::string &to) {
    const ssize_t size = getxattr(from.c_str(), kDefaultRights, nullptr, 0);
    std::vector<char> rights(size > 0 ? static_cast<size_t>(size) : 0);
    if (size > 0 && getxattr(from.c_str(), kDefaultRights, rights.data(), rights.size()) == size)
        return setxattr(to.c_str(), kDefaultRights, rights.data(), rights.size(), 0) == 0 ? 0
                                                                                          : errno;
    // What the folder above has handed on. Not every file system knows such rights.
    (void)removexattr(to.c_str(), kDefaultRights);
    return 0;
}

bool HandsOnItsGroup(const struct stat &folder) {
    return (folder.st_mode & S_ISGID) != 0;
}
#endif

} // namespace

int PlatformInheritRights(const std::string &from, const std::string &to) {
    struct stat model {};
    struct stat result {};
    if (stat(from.c_str(), &model) != 0) return errno;
    const bool handsOn = HandsOnItsGroup(model);
    const mode_t mode = handsOn ? S_ISGID | S_IRWXU : S_IRWXU;
    if (chown(to.c_str(), static_cast<uid_t>(-1), handsOn ? model.st_gid : getegid()) != 0 ||
        chmod(to.c_str(), mode) != 0 || stat(to.c_str(), &result) != 0)
        return errno;
    // The system takes the bit away without a word from who is not of the group.
    if (handsOn && !HandsOnItsGroup(result)) return EPERM;
    return CopyDefaultRights(from, to);
}
