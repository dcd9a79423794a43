/// A printer description of the test's own, in a file that goes with the object.
#pragma once

#include "support/CFRef.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>

inline CFRef<CFURLRef> FileURL(const std::string &path) {
    return CFRef<CFURLRef>(CFURLCreateFromFileSystemRepresentation(
        nullptr, reinterpret_cast<const UInt8 *>(path.data()), static_cast<CFIndex>(path.size()),
        false));
}

/// A folder that is removed with the (plain) files in it.
class TemporaryFolder {
public:
    TemporaryFolder() {
        const char *parent = std::getenv("TEMP");
        mPath = std::string(parent ? parent : "/tmp") + "/ppd-XXXXXX";
        if (!mkdtemp(mPath.data())) throw std::runtime_error("cannot make " + mPath);
    }
    ~TemporaryFolder() { rmdir(mPath.c_str()); }
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;
    const std::string &Path() const { return mPath; }

private:
    std::string mPath;
};

class PPDFile {
public:
    /// Exactly these bytes.
    explicit PPDFile(std::string_view content, const std::string &name = "Test.ppd")
        : mPath(mFolder.Path() + "/" + name) {
        std::FILE *file = std::fopen(mPath.c_str(), "wb");
        if (!file || std::fwrite(content.data(), 1, content.size(), file) != content.size() ||
            std::fclose(file) != 0)
            throw std::runtime_error("cannot write " + mPath);
    }
    ~PPDFile() { unlink(mPath.c_str()); }
    PPDFile(const PPDFile &) = delete;
    PPDFile &operator=(const PPDFile &) = delete;

    const std::string &Path() const { return mPath; }
    CFRef<CFURLRef> URL() const { return FileURL(mPath); }

private:
    TemporaryFolder mFolder;
    std::string mPath;
};
