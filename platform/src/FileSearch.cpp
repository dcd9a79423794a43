#include "FileSearch.h"
#include "FilePath.h"
#include <dirent.h>
#include <memory>
#include <sys/stat.h>

namespace {

struct FolderCloser {
    void operator()(DIR *folder) const { closedir(folder); }
};

/// Calls `visit(name, entry)` for every entry but "." and ".." until it returns false.
template <class F>
void ForEachEntry(const std::string &path, F visit) {
    const std::unique_ptr<DIR, FolderCloser> folder(opendir(path.c_str()));
    if (!folder) return;
    while (const dirent *entry = readdir(folder.get())) {
        const std::string name = entry->d_name;
        if (name != "." && name != ".." && !visit(name, *entry)) return;
    }
}

bool IsFile(const std::string &path, const dirent &entry, const FileIdentity &identity) {
    if (static_cast<int64_t>(entry.d_ino) != identity.inode) return false;
    const auto found = IdentityOf(path);
    return found && IsSameFile(*found, identity);
}

dev_t DeviceOf(const std::string &path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 ? info.st_dev : 0;
}

} // namespace

std::string ChildWithIdentity(const std::string &folder, const FileIdentity &identity) {
    std::string found;
    ForEachEntry(folder, [&](const std::string &name, const dirent &entry) {
        const std::string path = JoinPath(folder, name);
        if (IsFile(path, entry, identity)) found = path;
        return found.empty();
    });
    return found;
}

std::string DescendByIdentity(const std::string &folder,
                              const std::vector<FileIdentity> &identities, size_t begin) {
    std::string path = folder;
    for (size_t i = begin; i < identities.size() && !path.empty(); ++i)
        path = ChildWithIdentity(path, identities[i]);
    return path;
}

std::string FileSearch::Visit(const std::string &folder, const std::string &except,
                              std::vector<std::string> &folders) {
    std::string found;
    ForEachEntry(folder, [&](const std::string &name, const dirent &entry) {
        const std::string path = JoinPath(folder, name);
        if (IsFile(path, entry, mIdentity))
            found = path;
        else if (entry.d_type == DT_DIR && path != except)
            folders.push_back(path);
        return found.empty() && --mEntriesLeft > 0;
    });
    return found;
}

std::string FileSearch::Below(const std::string &root, const std::string &except) {
    const dev_t device = DeviceOf(root);
    std::vector<std::string> folders{root};
    for (size_t i = 0; i < folders.size() && mEntriesLeft > 0; ++i) {
        const std::string folder = folders[i];
        if (DeviceOf(folder) != device) continue;
        std::string found = Visit(folder, except, folders);
        if (!found.empty()) return found;
    }
    return {};
}
