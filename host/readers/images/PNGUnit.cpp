#include "host/readers/images/PNGUnit.h"

#include "host/readers/ByteReader.h"

namespace {

constexpr int64_t kSignatureBytes = 8;
/// Length, type and check sum.
constexpr int64_t kChunkBytes = 12;
constexpr int64_t kUnitOffset = 8;
constexpr int64_t kUnitBytes = 9;
constexpr int kMetre = 1;

uint32_t NextNumber(ByteReader &file) {
    uint32_t number = 0;
    for (int i = 0; i < 4; ++i)
        number = number << 8 | static_cast<uint8_t>(file.Next());
    return number;
}

} // namespace

bool TellsPixelsPerMetre(const std::string &path) {
    ByteReader file(path);
    for (int64_t at = kSignatureBytes; file.Seek(at) && file.Peek() != ByteReader::kEnd;) {
        const uint32_t length = NextNumber(file);
        std::string type;
        for (int i = 0; i < 4; ++i)
            type += static_cast<char>(file.Next());
        if (type == "pHYs")
            return length == kUnitBytes && file.Seek(file.Position() + kUnitOffset) &&
                   file.Next() == kMetre;
        // It has to stand before the pixels.
        if (type == "IDAT") return false;
        at += kChunkBytes + length;
    }
    return false;
}
