#include "support/RegularFile.h"

#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

FileDescriptor::~FileDescriptor() {
    if (mDescriptor >= 0) close(mDescriptor);
}

FileDescriptor OpenRegularFile(const std::string &path) {
    // Looked at before it is opened, for opening alone moves some devices; and again afterwards,
    // for it may have been replaced. O_NONBLOCK keeps a FIFO that slipped in from waiting.
    struct stat info {};
    if (stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return {};
    FileDescriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    if (!file || fstat(file.Get(), &info) != 0 || !S_ISREG(info.st_mode)) return {};
    return file;
}

std::string PathOfURL(CFURLRef url) {
    char path[PATH_MAX];
    auto *bytes = reinterpret_cast<UInt8 *>(path);
    if (!url || !CFURLGetFileSystemRepresentation(url, true, bytes, sizeof path)) return {};
    return path;
}
