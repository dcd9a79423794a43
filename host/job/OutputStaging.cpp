#include "host/job/OutputStaging.h"

#include "host/job/FolderListing.h"
#include "host/terminal/Cancellation.h"
#include "host/terminal/ExitStatus.h"
#include "host/terminal/LastResort.h"
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <set>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>
#include <utility>

namespace {

/// The driver's limit for a path with its terminator.
constexpr size_t kLongestPath = 1024;
/// Room for a title of 200 bytes and what the driver appends to it.
constexpr size_t kLongestName = 216;

[[noreturn]] void Refuse(const std::string &path, const std::string &why) {
    throw HostError(ExitStatus::Output, path + ": " + why);
}

std::string RealFolder(const std::string &folder) {
    char real[PATH_MAX];
    struct stat info {};
    if (!realpath(folder.c_str(), real) || stat(real, &info) != 0)
        Refuse(folder.size() > 80 ? folder.substr(0, 80) + "..." : folder,
               std::string(strerror(errno)) + "; choose another folder for the document");
    if (!S_ISDIR(info.st_mode))
        Refuse(folder, "not a folder; choose the folder that is to receive the document");
    if (access(real, W_OK | X_OK) != 0)
        Refuse(folder, std::string(strerror(errno)) + "; allow writing or choose another folder");
    return real;
}

/// "base.ps", "base_01.ps", ..., "base_99.ps"
constexpr int kNumbers = 100;

std::string Numbered(const std::string &name, int number) {
    const size_t dot = name.rfind('.');
    const size_t end = dot == std::string::npos || dot == 0 ? name.size() : dot;
    char suffix[8] = "";
    if (number > 0) (void)snprintf(suffix, sizeof suffix, "_%02d", number);
    return name.substr(0, end) + suffix + name.substr(end);
}

/// Waits until the file or folder is on the disk. 0 or an errno value.
int Synchronize(const std::string &path) {
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return errno;
    const int code = fsync(fd) == 0 ? 0 : errno;
    (void)close(fd);
    return code;
}

/// Gives `from` the name `to` unless it is taken. Returns 0 or an errno value.
int MoveWithoutReplacing(decltype(StagingFunctions::move) inOneStep, const std::string &from,
                         const std::string &to) {
    const int moved = inOneStep ? inOneStep(from.c_str(), to.c_str()) : ENOSYS;
    if (moved == 0 || moved == EEXIST) return moved;
    // Many a network's file system cannot, but knows hard links.
    if (link(from.c_str(), to.c_str()) == 0) {
        (void)unlink(from.c_str());
        return 0;
    }
    if (errno == EEXIST) return EEXIST;
    // Neither of both: hold the name first, then move over it.
    const int fd = open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0) return errno;
    (void)close(fd);
    if (rename(from.c_str(), to.c_str()) == 0) return 0;
    const int code = errno;
    (void)unlink(to.c_str());
    return code;
}

uint64_t SizeOf(const std::string &path) {
    struct stat info {};
    if (stat(path.c_str(), &info) != 0)
        Refuse(path, std::string(strerror(errno)) + "; print again");
    return static_cast<uint64_t>(info.st_size);
}

/// Takes the names from files that have theirs already: a job's documents come all, or none.
void Unpublish(void *published) noexcept {
    for (const FinishedFile &file : *static_cast<std::vector<FinishedFile> *>(published))
        if (!file.path.empty()) (void)unlink(file.path.c_str());
}

} // namespace

OutputStaging::OutputStaging(const std::string &folder, const StagingFunctions &driver, Sync sync)
    : mFolder(RealFolder(folder)), mDriver(driver), mSync(sync) {
    if (mFolder.size() + kLongestName > kLongestPath)
        Refuse(mFolder.substr(0, 80) + "...", "the path is too long; choose another folder");
    const size_t slash = mFolder.rfind('/');
    const std::string parent = slash == 0 ? "/" : mFolder.substr(0, slash);
    for (const std::string &place : {parent, mFolder})
        StagingFolder::RemoveAbandoned(place);
    mStaging = StagingFolder::Make(parent, mFolder, mDriver.inheritRights);
    if (!mStaging) mStaging = StagingFolder::Make(mFolder, mFolder, nullptr);
    if (!mStaging) Refuse(folder, strerror(errno));
}

std::vector<std::string> OutputStaging::Files() const {
    std::optional<std::vector<std::string>> listing = NamesIn(Folder());
    if (!listing) Refuse(Folder(), std::string(strerror(errno)) + "; print again");
    std::vector<std::string> names = std::move(*listing);
    names.erase(std::remove_if(names.begin(), names.end(), StagingFolder::IsOwn), names.end());
    // base.eps, base_p02.eps, ..., base_p99.eps, base_p100.eps
    std::sort(names.begin(), names.end(), [](const std::string &a, const std::string &b) {
        return a.size() != b.size() ? a.size() < b.size() : a < b;
    });
    return names;
}

std::string OutputStaging::MoveUnique(const std::string &name) const {
    for (int number = 0; number < kNumbers; ++number) {
        std::string target = mFolder + "/" + Numbered(name, number);
        const int code = MoveWithoutReplacing(mDriver.move, Folder() + "/" + name, target);
        if (code == 0) return target;
        if (code != EEXIST) Refuse(target, strerror(code));
    }
    Refuse(mFolder + "/" + name, "this name and its 99 numbered forms are taken; remove some of "
                                 "these files, or choose another title with -t");
}

void OutputStaging::RestoreNames(const std::vector<std::string> &names) const {
    const std::vector<std::string> files = Files();
    const std::set<std::string> present(files.begin(), files.end());
    for (const std::string &name : names)
        for (int number = 1; number < kNumbers && present.count(name) == 0; ++number) {
            const std::string numbered = Numbered(name, number);
            if (present.count(numbered) == 0) continue;
            (void)rename((Folder() + "/" + numbered).c_str(), (Folder() + "/" + name).c_str());
            break;
        }
}

std::string OutputStaging::MoveOver(const std::string &file, const std::string &name) const {
    std::string target = mFolder + "/" + name;
    CheckReplaceable(target);
    if (rename((Folder() + "/" + file).c_str(), target.c_str()) != 0)
        Refuse(target, std::string(strerror(errno)) + "; choose another name with -o");
    return target;
}

std::vector<FinishedFile> OutputStaging::Publish(const std::string &name) {
    const std::vector<std::string> files = Files();
    if (mSync == Sync::Yes) SynchronizeFiles(files);
    // That may have taken a while.
    Cancellation::Check();
    std::vector<FinishedFile> published = MoveAll(files, name);
    // The documents are whole and there; a folder that cannot be waited for changes nothing in
    // that.
    if (mSync == Sync::Yes) (void)Synchronize(mFolder);
    return published;
}

std::vector<FinishedFile> OutputStaging::MoveAll(const std::vector<std::string> &files,
                                                 const std::string &name) const {
    std::vector<FinishedFile> published(files.size());
    const Unfinished incomplete(Unpublish, &published);
    // A file that replaces another goes last: that step cannot be undone.
    const size_t first = name.empty() ? 0 : 1;
    try {
        for (size_t i = 0; i < files.size(); ++i) {
            const size_t page = (i + first) % files.size();
            published[page].bytes = SizeOf(Folder() + "/" + files[page]);
            published[page].path =
                page == 0 && !name.empty() ? MoveOver(files[page], name) : MoveUnique(files[page]);
        }
    } catch (...) {
        Unpublish(&published);
        throw;
    }
    return published;
}

/// What a network's file system could not take, it says here at the latest.
void OutputStaging::SynchronizeFiles(const std::vector<std::string> &files) const {
    for (const std::string &name : files)
        if (const int code = Synchronize(Folder() + "/" + name))
            Refuse(mFolder, std::string("the document cannot be brought to the disk: ") +
                                strerror(code) + "; nothing was kept");
}

void CheckReplaceable(const std::string &path) {
    struct stat info {};
    if (stat(path.c_str(), &info) == 0 && !S_ISREG(info.st_mode))
        Refuse(path, "not a regular file, and cannot be replaced by one; choose another name");
}

void CheckRoom(const std::string &folder, uint64_t least) {
    struct statvfs info {};
    // A file system that tells no size may have any.
    if (statvfs(folder.c_str(), &info) != 0 || info.f_blocks == 0) return;
    const auto room = static_cast<double>(info.f_bavail) * static_cast<double>(info.f_frsize);
    if (room >= static_cast<double>(least)) return;
    const auto gigabytes = [](double bytes) {
        char text[32];
        (void)snprintf(text, sizeof text, "%.3g GB", bytes / 1e9);
        return std::string(text);
    };
    Refuse(folder, "there is room for " + gigabytes(room) + ", and the document takes at least " +
                       gigabytes(static_cast<double>(least)) +
                       "; make room, or print less at a time");
}

std::string CheckFinishedFile(int fd, uint64_t least, uint64_t most) {
    static const char kEnd[] = "%%EOF\n";
    constexpr size_t kEndSize = sizeof kEnd - 1;
    struct stat info {};
    char tail[kEndSize];
    if (fd < 0 || fstat(fd, &info) != 0) return strerror(errno);
    const auto size = static_cast<uint64_t>(info.st_size);
    if (size < kEndSize ||
        pread(fd, tail, kEndSize, static_cast<off_t>(size - kEndSize)) != kEndSize ||
        memcmp(tail, kEnd, kEndSize) != 0)
        return "its end is missing";
    if (size < least || size > most)
        return "it has " + std::to_string(size) + " bytes instead of " + std::to_string(least) +
               " to " + std::to_string(most);
    return {};
}
