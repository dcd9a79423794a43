// Any bytes as a PNM file: it is refused, or has all its samples. A raw file that is whole, and not
// one byte longer, is cut by a byte and must then be refused.
#include "fuzz/MemoryFile.h"
#include "host/readers/PNMCheck.h"
#include "host/readers/PNMHeader.h"
#include "host/terminal/ExitStatus.h"

#include <cstdlib>

namespace {

bool IsWhole(const std::string &path) {
    try {
        CheckPNM(path);
        return true;
    } catch (const HostError &) {
        return false;
    }
}

/// Bytes of the file that the image takes.
int64_t ImageBytes(const std::string &path) {
    ByteReader file(path);
    const PNMHeader header = ReadPNMHeader(file);
    return file.Position() + (header.IsPlain() ? 0 : header.SampleBytes());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static MemoryFile file;
    file.Hold(data, size);
    const std::string &path = file.Path();
    const bool second = HasSecondPNMImage(path);
    if (!IsWhole(path)) return 0;
    const int64_t bytes = ImageBytes(path);
    if (bytes > static_cast<int64_t>(size)) std::abort();
    if (second && bytes + 3 > static_cast<int64_t>(size)) std::abort();
    const bool plain = data[1] <= '3';
    if (plain) return 0;
    file.Cut(static_cast<size_t>(bytes - 1));
    if (IsWhole(path)) std::abort();
    return 0;
}
