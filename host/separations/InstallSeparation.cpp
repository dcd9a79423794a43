// Puts separation profiles where the driver finds them.
#include "host/separations/MakeSeparation.h"

#include "host/terminal/Cancellation.h"
#include "host/terminal/ExitStatus.h"
#include "host/terminal/LastResort.h"
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

/// The print record keeps a name as a Pascal string.
constexpr size_t kLongestName = 255;

[[noreturn]] void Fail(const std::string &what, const std::string &path, int code) {
    throw HostError(ExitStatus::Output, what + " '" + path + "': " + std::strerror(code));
}

/// A file that is being written; removed unless it has got its final name.
class NewFile {
public:
    explicit NewFile(const std::string &folder)
        : mPath(folder + "/.zelprint-" + std::to_string(getpid())),
          mDescriptor(open(mPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666)),
          mUnfinished([](void *self) noexcept { static_cast<NewFile *>(self)->Remove(); }, this) {
        if (mDescriptor < 0) Fail("cannot write", mPath, errno);
    }
    NewFile(const NewFile &) = delete;
    NewFile &operator=(const NewFile &) = delete;
    ~NewFile() {
        close(mDescriptor);
        Remove();
    }

    /// The signature comes last: until then the driver takes the file for no profile.
    void Write(const std::string &bytes) const {
        constexpr size_t kSignature = 4;
        WriteAt(bytes, kSignature, bytes.size());
        if (fsync(mDescriptor) != 0) Fail("cannot write", mPath, errno);
        WriteAt(bytes, 0, kSignature);
        if (fsync(mDescriptor) != 0) Fail("cannot write", mPath, errno);
    }
    void Replace(const std::string &path) {
        if (rename(mPath.c_str(), path.c_str()) != 0) Fail("cannot replace", path, errno);
        mPath.clear();
    }
    /// A link, unlike a renaming, fails where something stands already.
    void Become(const std::string &path) const {
        if (link(mPath.c_str(), path.c_str()) == 0) return;
        if (errno == EEXIST)
            throw HostError(ExitStatus::Output,
                            "'" + path + "' exists; give another name, or --force to replace it");
        Fail("cannot create", path, errno);
    }

private:
    void Remove() const noexcept {
        if (mDescriptor >= 0 && !mPath.empty()) (void)unlink(mPath.c_str());
    }
    void WriteAt(const std::string &bytes, size_t from, size_t to) const {
        while (from < to) {
            const ssize_t n =
                pwrite(mDescriptor, bytes.data() + from, to - from, static_cast<off_t>(from));
            if (n <= 0) Fail("cannot write", mPath, n < 0 ? errno : ENOSPC);
            from += static_cast<size_t>(n);
        }
    }

    std::string mPath;
    int mDescriptor;
    Unfinished mUnfinished;
};

} // namespace

void CheckSeparationName(const std::string &name) {
    const auto refuse = [&name](const char *why) {
        throw HostError(ExitStatus::Usage, "a separation cannot be called '" + name + "': " + why);
    };
    if (name.empty()) refuse("it needs a name");
    if (name == "." || name == ".." || name.find('/') != std::string::npos)
        refuse("its name is a file's name, without a folder");
    if (name == "Standard") refuse("that is the built-in separation");
    if (name.size() > kLongestName) refuse("a name has at most 255 bytes");
}

std::string InstallSeparation(const std::string &folder, const std::string &name,
                              const std::string &bytes, bool force) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) Fail("cannot make the folder", folder, error.value());
    std::string path = folder + "/" + name;
    const Cancellation cancellation; // the unfinished file goes, whatever comes
    NewFile file(folder);
    file.Write(bytes);
    if (force)
        file.Replace(path);
    else
        file.Become(path);
    LastResort::Settle(ExitStatus::Success);
    return path;
}
