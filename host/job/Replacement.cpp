#include "host/job/Replacement.h"

#include "host/terminal/ExitStatus.h"
#include <algorithm>
#include <fcntl.h>
#include <initializer_list>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace {

[[noreturn]] void Refuse(const std::string &path, const std::string &why) {
    throw HostError(ExitStatus::Output, path + ": " + why);
}

/// Whether the file begins with one of these, or is empty. What cannot be read does not.
bool BeginsWith(const std::string &path, std::initializer_list<std::string_view> beginnings) {
    const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0) return false;
    char head[8];
    const ssize_t count = read(fd, head, sizeof head);
    (void)close(fd);
    if (count < 0) return false;
    const std::string_view text(head, static_cast<size_t>(count));
    return text.empty() ||
           std::any_of(beginnings.begin(), beginnings.end(), [text](std::string_view beginning) {
               return text.substr(0, beginning.size()) == beginning;
           });
}

void CheckMayReplace(const std::string &path, const std::vector<std::string> &files, bool force,
                     std::initializer_list<std::string_view> beginnings, const char *kind) {
    struct stat info {};
    if (stat(path.c_str(), &info) != 0) return;
    CheckNotPrinted(path, files);
    if (!force && S_ISREG(info.st_mode) && !BeginsWith(path, beginnings))
        Refuse(path, std::string("it exists and is no ") + kind +
                         "; give another name, or --force to replace it");
}

} // namespace

void CheckNotPrinted(const std::string &path, const std::vector<std::string> &files) {
    struct stat target {};
    if (stat(path.c_str(), &target) != 0) return;
    for (const std::string &file : files) {
        struct stat source {};
        if (stat(file.c_str(), &source) == 0 && source.st_dev == target.st_dev &&
            source.st_ino == target.st_ino)
            Refuse(path, "it is to be printed, and would be replaced; give another name");
    }
}

void CheckDocumentMayReplace(const std::string &path, const std::vector<std::string> &files,
                             bool force) {
    // The second is how EPS files with a preview begin.
    CheckMayReplace(path, files, force, {"%!", "\xC5\xD0\xD3\xC6"}, "PostScript or EPS file");
}

void CheckSettingsMayReplace(const std::string &path, const std::vector<std::string> &files,
                             bool force) {
    CheckMayReplace(path, files, force, {"POST"}, "settings file");
}
