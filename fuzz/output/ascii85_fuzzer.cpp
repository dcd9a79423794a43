// Every base-85 kernel, behind the stream encoder, against the literal transcription, and every
// kernel that packs rows against the plain one. The input: a byte that says in what pieces the
// data are written, then the data.
#include "Common/Src/postscript/PackRGB.h"
#include "Common/Src/stream/StreamEncoders.h"
#include "Common/Src/stream/Writebuffer.h"
#include "tests/Common/Src/stream/LiteralASCII85.h"
#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <vector>

namespace {

/// Enough for many blocks of every kernel and many lines of text. More only takes longer, and more
/// than 50,000 would leave the Writebuffer's current buffer, where the text is read.
constexpr size_t kMostData = 1024;

void Require(bool condition) {
    if (!condition) std::abort();
}

std::string LiteralStream(const uint8_t *data, size_t size) {
    std::string text;
    LiteralASCII85 encoder([&text](const char *bytes, size_t length) {
        text.append(bytes, length);
        return int16_t{0};
    });
    Require(encoder.Write(data, size) == 0);
    Require(encoder.Close() == 0);
    return text;
}

Writebuffer *Target() {
    static Writebuffer *const wb = NewWbuffer(0, 0, open("/dev/null", O_WRONLY | O_CLOEXEC));
    Require(wb != nullptr);
    return wb;
}

std::string Stream(ASCII85Kernel kernel, const uint8_t *data, size_t size, size_t piece) {
    ASCII85StreamEncoder encoder(Target(), kernel);
    for (size_t at = 0; at < size; at += piece) {
        const std::vector<uint8_t> part(data + at, data + std::min(at + piece, size));
        Require(encoder.Write(part.data(), part.size()) == 0);
    }
    Require(encoder.Close() == 0);
    WBBuffer &current = *Target()->current;
    std::string text(reinterpret_cast<char *>(current.data), current.length);
    current.length = 0;
    return text;
}

std::vector<uint8_t> Packed(PackRGBKernel kernel, const uint8_t *data, size_t pixels) {
    const std::vector<uint8_t> row(data, data + pixels * 4);
    std::vector<uint8_t> out(pixels * 3);
    kernel(row.data(), static_cast<int64_t>(pixels), out.data());
    return out;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0) return 0;
    size = std::min(size, kMostData);
    const size_t piece = *data == 0 ? kMostData : *data;
    ++data;
    --size;
    const std::string expected = LiteralStream(data, size);
    for (const ASCII85NamedKernel &named : ASCII85Kernels())
        Require(Stream(named.kernel, data, size, piece) == expected);
    const std::vector<uint8_t> packed = Packed(PackRGBPlain, data, size / 4);
    for (const PackRGBNamedKernel &named : PackRGBKernels())
        Require(Packed(named.kernel, data, size / 4) == packed);
    return 0;
}
