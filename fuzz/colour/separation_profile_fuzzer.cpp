// Bytes as a separation profile. What loads must separate every corner of the colours, by the
// plain and by the fast form alike.
#include "colour/EightColourSeparation.h"
#include "support/CFRef.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace {

/// A file in memory that the loader opens by its path like any other.
class MemoryFile {
public:
    MemoryFile() : mDescriptor(memfd_create("profile", MFD_CLOEXEC)) {
        const std::string path = "/proc/self/fd/" + std::to_string(mDescriptor);
        mURL = CFRef(CFURLCreateFromFileSystemRepresentation(
            kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(path.data()),
            static_cast<CFIndex>(path.size()), false));
    }
    MemoryFile(const MemoryFile &) = delete;
    MemoryFile &operator=(const MemoryFile &) = delete;
    ~MemoryFile() { close(mDescriptor); }

    void Hold(const uint8_t *data, size_t size) {
        if (ftruncate(mDescriptor, 0) != 0 || lseek(mDescriptor, 0, SEEK_SET) != 0 ||
            write(mDescriptor, data, size) != static_cast<ssize_t>(size))
            std::abort();
    }
    CFURLRef URL() const { return mURL.Get(); }

private:
    int mDescriptor;
    CFRef<CFURLRef> mURL;
};

void Separate(const EightColourLUT &table) {
    constexpr int64_t kColours = 9 * 9 * 9;
    uint8_t src[4 * kColours] = {};
    for (int i = 0; i < kColours; ++i) {
        const int levels[3] = {i / 81, i / 9 % 9, i % 9};
        for (int c = 0; c < 3; ++c)
            src[4 * i + c] = static_cast<uint8_t>(levels[c] * 255 / 8);
    }
    uint8_t plain[4 * kColours];
    uint8_t fast[4 * kColours];
    EightColourLUTSeparatePlain(&table, src, 4, kColours, plain, 1, 4);
    EightColourLUTSeparate(&table, src, 4, kColours, fast, 4, 1, 4);
    if (std::memcmp(plain, fast, sizeof plain) != 0) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static MemoryFile file;
    file.Hold(data, size);
    EightColourLUT *table = LoadEightColourLUT(file.URL());
    if (table) Separate(*table);
    ReleaseEightColourLUT(table);
    return 0;
}
