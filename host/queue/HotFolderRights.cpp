#include "host/queue/HotFolderRights.h"

#include "host/queue/RunProgram.h"
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

constexpr int kEnter = X_OK;
constexpr int kFill = W_OK | X_OK;

/// Does the process of `user` reach the folder? A process of its own asks, since rights given up do
/// not come back.
bool TryAs(const passwd &user, const std::string &folder) {
    const pid_t child = fork();
    if (child < 0) return true; // nothing is known
    if (child == 0) {
        const bool isUser =
            setgroups(1, &user.pw_gid) == 0 && setgid(user.pw_gid) == 0 && setuid(user.pw_uid) == 0;
        _exit(isUser && access(folder.c_str(), kFill) != 0 ? 1 : 0);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
    }
    return !WIFEXITED(status) || WEXITSTATUS(status) == 0;
}

bool ModeAllows(const passwd &user, const std::string &folder, int rights) {
    struct stat info = {};
    if (stat(folder.c_str(), &info) != 0) return true; // the call that needs it complains
    if (getxattr(folder.c_str(), "system.posix_acl_access", nullptr, 0) > 0) return true;
    const unsigned shift = info.st_uid == user.pw_uid ? 6 : info.st_gid == user.pw_gid ? 3 : 0;
    return (info.st_mode >> shift & static_cast<unsigned>(rights)) == static_cast<unsigned>(rights);
}

/// The folders above `folder`, the nearest first.
std::string FolderAbove(const std::string &folder) {
    const size_t slash = folder.rfind('/');
    return slash == 0 || slash == std::string::npos ? "/" : folder.substr(0, slash);
}

bool ModesAllow(const passwd &user, const std::string &folder) {
    if (!ModeAllows(user, folder, kFill)) return false;
    for (std::string above = folder; above != "/";) {
        above = FolderAbove(above);
        if (!ModeAllows(user, above, kEnter)) return false;
    }
    return true;
}

/// The commands that let the user in: through the folders that keep it out, and into the last.
std::string Remedy(const passwd &user, const std::string &folder) {
    std::string entries;
    for (std::string above = folder; above != "/";) {
        above = FolderAbove(above);
        if (!ModeAllows(user, above, kEnter))
            entries.insert(0, "setfacl -m u:" + std::string(user.pw_name) + ":x " +
                                  ShellWord(above) + " && ");
    }
    return entries + "setfacl -m u:" + user.pw_name + ":rwx,d:u:" + user.pw_name + ":rwx " +
           ShellWord(folder);
}

} // namespace

std::string WhyNotWritableBy(const std::string &user, const std::string &folder) {
    const passwd *entry = getpwnam(user.c_str());
    if (!entry) return {}; // no print system of Debian's kind
    const bool may = geteuid() == 0 ? TryAs(*entry, folder) : ModesAllow(*entry, folder);
    if (may) return {};
    return "the print system's user " + user + " may not write into " + folder +
           "; let it in: " + Remedy(*entry, folder);
}
