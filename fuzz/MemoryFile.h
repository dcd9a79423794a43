/// What a fuzzer has made up, as a file that readers open by its path. Nothing touches a disk.
#pragma once

#include "support/CFRef.h"

#include <CoreFoundation/CoreFoundation.h>
#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

class MemoryFile {
public:
    MemoryFile()
        : mDescriptor(memfd_create("fuzz", MFD_CLOEXEC)),
          mPath("/proc/self/fd/" + std::to_string(mDescriptor)) {
        if (mDescriptor < 0) std::abort();
    }
    MemoryFile(const MemoryFile &) = delete;
    MemoryFile &operator=(const MemoryFile &) = delete;
    ~MemoryFile() { close(mDescriptor); }

    /// Makes these bytes the whole content; whoever reads the descriptor begins anew.
    void Hold(const void *data, size_t size) {
        Cut(0);
        if (pwrite(mDescriptor, data, size, 0) != static_cast<ssize_t>(size) ||
            lseek(mDescriptor, 0, SEEK_SET) != 0)
            std::abort();
    }
    /// Leaves the first `size` bytes.
    void Cut(size_t size) {
        if (ftruncate(mDescriptor, static_cast<off_t>(size)) != 0) std::abort();
    }

    int Descriptor() const { return mDescriptor; }
    const std::string &Path() const { return mPath; }
    CFRef<CFURLRef> URL() const {
        return CFRef<CFURLRef>(CFURLCreateFromFileSystemRepresentation(
            nullptr, reinterpret_cast<const UInt8 *>(mPath.data()),
            static_cast<CFIndex>(mPath.size()), false));
    }

private:
    int mDescriptor;
    std::string mPath;
};
