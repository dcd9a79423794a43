#include "Trash.h"
#include "FilePath.h"
#include <climits>
#include <cstdlib>
#include <platform/Platform.h>
#include <pwd.h>
#include <unistd.h>

namespace {

std::string HomeTrash() {
    const char *data = std::getenv("XDG_DATA_HOME");
    if (data && *data == '/') return std::string(data) + "/Trash";
    const char *home = std::getenv("HOME");
    if (!home || *home != '/') {
        const passwd *user = getpwuid(getuid());
        home = user ? user->pw_dir : nullptr;
    }
    return home ? std::string(home) + "/.local/share/Trash" : std::string();
}

/// The names of trashes at the top of a volume: one's own, and one's part of a shared one.
std::vector<std::string> VolumeTrashNames() {
    const std::string user = std::to_string(getuid());
    return {".Trash-" + user, ".Trash/" + user};
}

std::string RealPath(const std::string &path) {
    char buffer[PATH_MAX];
    return realpath(path.c_str(), buffer) ? buffer : "";
}

bool IsInside(const std::string &path, const std::string &folder) {
    return !folder.empty() && path.compare(0, folder.size(), folder) == 0 &&
           (path.size() == folder.size() || path[folder.size()] == '/');
}

} // namespace

std::vector<std::string> TrashFoldersFor(const std::string &path) {
    std::vector<std::string> folders;
    const std::string home = HomeTrash();
    if (!home.empty()) folders.push_back(home + "/files");
    for (const std::string &ancestor : PathAndAncestors(path))
        for (const std::string &name : VolumeTrashNames())
            folders.push_back(JoinPath(JoinPath(ancestor, name), "files"));
    return folders;
}

bool PlatformIsInTrash(const std::string &path) {
    const std::string real = RealPath(path);
    if (real.empty()) return false;
    if (IsInside(real, RealPath(HomeTrash()))) return true;
    for (const std::string &ancestor : PathAndAncestors(real))
        for (const std::string &name : VolumeTrashNames())
            if (IsInside(real, JoinPath(ancestor, name))) return true;
    return false;
}
