// The format is documented in Apple's CFBinaryPList.c: a header, objects with a marker byte each, a
// table of their offsets, and a trailer of 32 bytes. All numbers are big-endian.
#include "BinaryPropertyList.h"
#include "Owned.h"
#include <cmath>
#include <cstring>
#include <unordered_map>
#include <vector>

namespace {

constexpr size_t kHeaderSize = 8;
constexpr size_t kTrailerSize = 32;
constexpr int kMaximumDepth = 128;
/// A container that several others share is read once for each of them.
constexpr int kMaximumObjects = 1 << 16;

struct Span {
    const UInt8 *data = nullptr;
    size_t size = 0;
};

uint64_t BigEndian(const UInt8 *bytes, size_t count) {
    uint64_t value = 0;
    for (size_t i = 0; i < count; ++i)
        value = value << 8 | bytes[i];
    return value;
}

class Reader {
public:
    Reader(const UInt8 *bytes, size_t length)
        : mBytes(bytes), mLength(length), mBytesLeft(length) {}
    CFPropertyListRef Read();

private:
    /// The bytes after a marker, up to the table of offsets.
    struct Cursor {
        size_t at;
    };

    bool ReadTrailer();
    CFTypeRef ReadObject(uint64_t index, int depth);
    CFTypeRef ReadScalarOnce(uint64_t index, UInt8 marker, Cursor cursor);
    CFTypeRef ReadScalar(UInt8 marker, Cursor cursor);
    CFTypeRef ReadSimple(UInt8 marker);
    CFTypeRef ReadInteger(size_t size, Cursor cursor);
    CFTypeRef ReadReal(size_t size, Cursor cursor);
    CFTypeRef ReadDate(Cursor cursor);
    CFTypeRef ReadUnicode(Span units);
    CFTypeRef ReadArray(uint64_t count, Cursor cursor, int depth);
    CFTypeRef ReadDictionary(uint64_t count, Cursor cursor, int depth);
    bool Take(uint64_t size, Cursor &cursor, Span &span) const;
    bool ReadCount(UInt8 marker, Cursor &cursor, uint64_t &count) const;
    [[nodiscard]] uint64_t Reference(Span references, uint64_t index) const;

    const UInt8 *mBytes;
    size_t mLength;
    size_t mOffsetSize = 0, mReferenceSize = 0, mTable = 0;
    uint64_t mObjectCount = 0, mTop = 0;
    int mObjectsRead = 0;
    /// What has been read, for the containers that share it.
    std::unordered_map<uint64_t, Owned<CFTypeRef>> mScalars;
    /// Bytes that they may still take: objects of a whole file lie side by side.
    uint64_t mBytesLeft;
};

bool Reader::ReadTrailer() {
    if (mLength < kHeaderSize + kTrailerSize) return false;
    const UInt8 *trailer = mBytes + mLength - kTrailerSize;
    mOffsetSize = trailer[6];
    mReferenceSize = trailer[7];
    mObjectCount = BigEndian(trailer + 8, 8);
    mTop = BigEndian(trailer + 16, 8);
    const uint64_t table = BigEndian(trailer + 24, 8);
    const size_t tableEnd = mLength - kTrailerSize;
    if (mOffsetSize < 1 || mOffsetSize > 8 || mReferenceSize < 1 || mReferenceSize > 8 ||
        table < kHeaderSize || table > tableEnd)
        return false;
    mTable = table;
    return mObjectCount <= (tableEnd - table) / mOffsetSize;
}

CFPropertyListRef Reader::Read() {
    return ReadTrailer() ? ReadObject(mTop, 0) : nullptr;
}

/// Cuts `size` bytes off; false when there are not so many left.
bool Reader::Take(uint64_t size, Cursor &cursor, Span &span) const {
    if (size > mTable - cursor.at) return false;
    span = {mBytes + cursor.at, size};
    cursor.at += size;
    return true;
}

/// The count in a marker's low half, or, when that is 15, in an integer object that follows.
bool Reader::ReadCount(UInt8 marker, Cursor &cursor, uint64_t &count) const {
    count = marker & 0x0f;
    if (count != 0x0f) return true;
    Span span;
    if (!Take(1, cursor, span) || (*span.data & 0xfc) != 0x10) return false;
    const size_t size = size_t{1} << (*span.data & 0x03);
    if (!Take(size, cursor, span)) return false;
    count = BigEndian(span.data, size);
    return true;
}

uint64_t Reader::Reference(Span references, uint64_t index) const {
    return BigEndian(references.data + index * mReferenceSize, mReferenceSize);
}

CFTypeRef Reader::ReadObject(uint64_t index, int depth) {
    if (index >= mObjectCount || depth > kMaximumDepth || ++mObjectsRead > kMaximumObjects)
        return nullptr;
    const uint64_t offset = BigEndian(mBytes + mTable + index * mOffsetSize, mOffsetSize);
    if (offset < kHeaderSize || offset >= mTable) return nullptr;
    const UInt8 marker = mBytes[offset];
    Cursor cursor{static_cast<size_t>(offset) + 1};
    const bool isArray = (marker & 0xf0) == 0xa0;
    if (!isArray && (marker & 0xf0) != 0xd0) return ReadScalarOnce(index, marker, cursor);
    uint64_t count = 0;
    if (!ReadCount(marker, cursor, count)) return nullptr;
    return isArray ? ReadArray(count, cursor, depth) : ReadDictionary(count, cursor, depth);
}

CFTypeRef Reader::ReadScalarOnce(uint64_t index, UInt8 marker, Cursor cursor) {
    Owned<CFTypeRef> &scalar = mScalars[index];
    if (!scalar) scalar.reset(ReadScalar(marker, cursor));
    return scalar ? CFRetain(scalar.get()) : nullptr;
}

CFTypeRef Reader::ReadScalar(UInt8 marker, Cursor cursor) {
    switch (marker & 0xf0) {
        case 0x00:
            return ReadSimple(marker);
        case 0x10:
            return ReadInteger(size_t{1} << (marker & 0x0f), cursor);
        case 0x20:
            return ReadReal(size_t{1} << (marker & 0x0f), cursor);
        case 0x30:
            return marker == 0x33 ? ReadDate(cursor) : nullptr;
        default:
            break;
    }
    uint64_t count = 0;
    Span span;
    if (!ReadCount(marker, cursor, count)) return nullptr;
    const bool isUnicode = (marker & 0xf0) == 0x60;
    if (isUnicode && count > mLength) return nullptr;
    if (!Take(isUnicode ? count * 2 : count, cursor, span)) return nullptr;
    if (span.size > mBytesLeft) return nullptr;
    mBytesLeft -= span.size;
    switch (marker & 0xf0) {
        case 0x40:
            return CFDataCreate(kCFAllocatorDefault, span.data, CFIndex(span.size));
        case 0x50:
            return CFStringCreateWithBytes(kCFAllocatorDefault, span.data, CFIndex(span.size),
                                           kCFStringEncodingUTF8, 0);
        case 0x60:
            return ReadUnicode(span);
        default:
            return nullptr;
    }
}

CFTypeRef Reader::ReadSimple(UInt8 marker) {
    if (marker == 0x08) return CFRetain(kCFBooleanFalse);
    return marker == 0x09 ? CFRetain(kCFBooleanTrue) : nullptr;
}

/// Integers of eight bytes are signed, shorter ones are not.
CFTypeRef Reader::ReadInteger(size_t size, Cursor cursor) {
    Span span;
    if (size > 8 || !Take(size, cursor, span)) return nullptr;
    const auto value = static_cast<SInt64>(BigEndian(span.data, size));
    return CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &value);
}

CFTypeRef Reader::ReadReal(size_t size, Cursor cursor) {
    Span span;
    if ((size != 4 && size != 8) || !Take(size, cursor, span)) return nullptr;
    const uint64_t bits = BigEndian(span.data, size);
    const auto narrowBits = static_cast<uint32_t>(bits);
    float narrow = 0;
    double wide = 0;
    std::memcpy(&narrow, &narrowBits, sizeof narrow);
    std::memcpy(&wide, &bits, sizeof wide);
    const double value = size == 4 ? narrow : wide;
    // No property list can hold anything else, and none with it could be written again.
    if (!std::isfinite(value)) return nullptr;
    return CFNumberCreate(kCFAllocatorDefault, kCFNumberDoubleType, &value);
}

CFTypeRef Reader::ReadDate(Cursor cursor) {
    Span span;
    if (!Take(8, cursor, span)) return nullptr;
    const uint64_t bits = BigEndian(span.data, 8);
    CFAbsoluteTime at = 0;
    std::memcpy(&at, &bits, sizeof at);
    return CFDateCreate(kCFAllocatorDefault, at);
}

/// Is every surrogate one of a pair? Others have no form in UTF-8.
bool IsUnicode(const std::vector<UniChar> &text) {
    for (size_t i = 0; i < text.size(); ++i) {
        if ((text[i] & 0xf800) != 0xd800) continue;
        const bool isPair =
            (text[i] & 0xfc00) == 0xd800 && i + 1 < text.size() && (text[i + 1] & 0xfc00) == 0xdc00;
        if (!isPair) return false;
        ++i;
    }
    return true;
}

CFTypeRef Reader::ReadUnicode(Span units) {
    std::vector<UniChar> text(units.size / 2);
    for (size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<UniChar>(BigEndian(units.data + 2 * i, 2));
    if (!IsUnicode(text)) return nullptr;
    return CFStringCreateWithBytes(kCFAllocatorDefault,
                                   reinterpret_cast<const UInt8 *>(text.data()),
                                   CFIndex(units.size), kCFStringEncodingUTF16, 0);
}

CFTypeRef Reader::ReadArray(uint64_t count, Cursor cursor, int depth) {
    Span references;
    if (count > mLength || !Take(count * mReferenceSize, cursor, references)) return nullptr;
    Owned<CFMutableArrayRef> array(
        CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks));
    for (uint64_t i = 0; i < count; ++i) {
        const Owned<CFTypeRef> value(ReadObject(Reference(references, i), depth + 1));
        if (!value) return nullptr;
        CFArrayAppendValue(array.get(), value.get());
    }
    return array.release();
}

CFTypeRef Reader::ReadDictionary(uint64_t count, Cursor cursor, int depth) {
    Span keys;
    Span values;
    if (count > mLength || !Take(count * mReferenceSize, cursor, keys) ||
        !Take(count * mReferenceSize, cursor, values))
        return nullptr;
    Owned<CFMutableDictionaryRef> dictionary(CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    for (uint64_t i = 0; i < count; ++i) {
        const Owned<CFTypeRef> key(ReadObject(Reference(keys, i), depth + 1));
        if (!key || CFGetTypeID(key.get()) != CFStringGetTypeID()) return nullptr;
        const Owned<CFTypeRef> value(ReadObject(Reference(values, i), depth + 1));
        if (!value) return nullptr;
        CFDictionarySetValue(dictionary.get(), key.get(), value.get());
    }
    return dictionary.release();
}

} // namespace

bool IsBinaryPropertyList(const UInt8 *bytes, size_t length) {
    return length >= kHeaderSize && std::memcmp(bytes, "bplist0", 7) == 0;
}

CFPropertyListRef CreateFromBinaryPropertyList(const UInt8 *bytes, size_t length) {
    return IsBinaryPropertyList(bytes, length) ? Reader(bytes, length).Read() : nullptr;
}
