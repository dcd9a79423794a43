#include "WholeFile.h"
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// What a person's settings take is a thousandth of it.
constexpr off_t kLargest = 16 << 20;

class Descriptor {
public:
    explicit Descriptor(int fd) : mFd(fd) {}
    ~Descriptor() {
        if (mFd >= 0) (void)close(mFd);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    [[nodiscard]] int Get() const { return mFd; }

private:
    int mFd;
};

int WriteAll(int fd, const std::string &bytes) {
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = write(fd, bytes.data() + done, bytes.size() - done);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errno;
        done += static_cast<size_t>(count);
    }
    return fsync(fd) == 0 ? 0 : errno;
}

/// Where a link leads to, so that the link stays.
std::string Target(const std::string &path) {
    char *real = realpath(path.c_str(), nullptr);
    std::string target = real ? real : path;
    free(real);
    return target;
}

void SynchronizeFolder(const std::string &file) {
    const std::string folder = file.substr(0, file.rfind('/') + 1);
    const Descriptor fd(
        open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // Not every file system can; the file itself is on the disk.
    if (fd.Get() >= 0) (void)fsync(fd.Get());
}

} // namespace

int ReadWholeFile(const std::string &path, std::string &bytes) {
    bytes.clear();
    const Descriptor fd(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat info {};
    if (fd.Get() < 0 || fstat(fd.Get(), &info) != 0) return errno;
    if (S_ISDIR(info.st_mode)) return EISDIR;
    if (!S_ISREG(info.st_mode)) return EINVAL;
    if (info.st_size > kLargest) return EFBIG;
    bytes.resize(static_cast<size_t>(info.st_size));
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = read(fd.Get(), &bytes[done], bytes.size() - done);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errno;
        if (count == 0) break;
        done += static_cast<size_t>(count);
    }
    bytes.resize(done);
    return 0;
}

int ReplaceWholeFile(const std::string &path, const std::string &bytes) {
    const std::string target = Target(path);
    std::string draft = target + ".XXXXXX";
    int code = 0;
    {
        const Descriptor fd(mkostemp(draft.data(), O_CLOEXEC)); // with mode 0600
        if (fd.Get() < 0) return errno;
        code = WriteAll(fd.Get(), bytes);
    }
    if (code == 0 && rename(draft.c_str(), target.c_str()) != 0) code = errno;
    if (code == 0)
        SynchronizeFolder(target);
    else
        (void)unlink(draft.c_str());
    return code;
}
