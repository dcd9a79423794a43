#include "host/driver/Record.h"

#include <algorithm>
#include <cstring>

namespace {

template <typename T>
T FromBigEndian(T stored) {
    unsigned char bytes[sizeof(T)];
    memcpy(bytes, &stored, sizeof(T));
    T value = 0;
    for (const unsigned char byte : bytes)
        value = static_cast<T>(value << 8 | byte);
    return value;
}

template <typename T>
T ToBigEndian(T value) {
    unsigned char bytes[sizeof(T)];
    for (size_t i = sizeof(T); i-- > 0; value = static_cast<T>(value >> 8))
        bytes[i] = static_cast<unsigned char>(value & 0xFF);
    T stored;
    memcpy(&stored, bytes, sizeof(T));
    return stored;
}

double DoubleOf(uint64_t stored) {
    const uint64_t bits = FromBigEndian(stored);
    double value;
    memcpy(&value, &bits, sizeof value);
    return value;
}

uint64_t StoredDouble(double value) {
    uint64_t bits;
    memcpy(&bits, &value, sizeof bits);
    return ToBigEndian(bits);
}

int16_t StoredShort(int value) {
    return static_cast<int16_t>(ToBigEndian(static_cast<uint16_t>(value)));
}

template <size_t N>
std::string NameOf(const char (&stored)[N]) {
    return std::string(stored, strnlen(stored, N));
}

template <size_t N>
void StoreName(char (&stored)[N], const std::string &name) {
    memset(stored, 0, N);
    memcpy(stored, name.data(), std::min(name.size(), N - 1));
}

uint32_t StoredFlag(bool on) {
    return ToBigEndian(on ? uint32_t{1} : uint32_t{0});
}

} // namespace

RecordPage Record::Page() const {
    const PSHPrint &fields = Fields();
    const bool custom = fields.mPageIsCustom_be != 0;
    return {custom ? std::string() : NameOf(fields.mPageName), custom,
            DoubleOf(fields.mPageWidth_be), DoubleOf(fields.mPageHeight_be)};
}

void Record::SetPage(const RecordPage &page) {
    PSHPrint &fields = Fields();
    StoreName(fields.mPageName, page.custom ? std::string() : page.name);
    fields.mPageIsCustom_be = StoredFlag(page.custom);
    fields.mPageWidth_be = StoredDouble(page.width);
    fields.mPageHeight_be = StoredDouble(page.height);
}

RecordResolution Record::Resolution() const {
    const PSHPrint &fields = Fields();
    return {NameOf(fields.mResolutionName), DoubleOf(fields.mXDpi_be), DoubleOf(fields.mYDpi_be)};
}

void Record::SetResolution(const RecordResolution &resolution) {
    PSHPrint &fields = Fields();
    StoreName(fields.mResolutionName, resolution.name);
    fields.mXDpi_be = StoredDouble(resolution.x);
    fields.mYDpi_be = StoredDouble(resolution.y);
}

uint32_t Record::ColourSpace() const {
    return FromBigEndian(Fields().mColourSpace_be);
}
void Record::SetColourSpace(uint32_t colourSpace) {
    Fields().mColourSpace_be = ToBigEndian(colourSpace);
}
void Record::SetFlipH(bool on) {
    Fields().mFlipH_be = StoredFlag(on);
}
void Record::SetFlipV(bool on) {
    Fields().mFlipV_be = StoredFlag(on);
}
void Record::SetRotated(bool on) {
    Fields().mRotated_be = StoredFlag(on);
}
void Record::SetEPS(bool on) {
    Fields().mEPSFormat_be = StoredFlag(on);
}
int Record::Copies() const {
    return static_cast<int16_t>(FromBigEndian(static_cast<uint16_t>(Fields().copies_be)));
}
void Record::SetCopies(int copies) {
    Fields().copies_be = StoredShort(copies);
}
void Record::SetPages(int first, int last) {
    Fields().fromPage_be = StoredShort(first);
    Fields().toPage_be = StoredShort(last);
}

std::string Record::Separation() const {
    const uint8_t *name = Fields().cmykSeparationName;
    return std::string(reinterpret_cast<const char *>(name) + 1, name[0]);
}

bool Record::SetSeparation(const std::string &name) {
    uint8_t *stored = Fields().cmykSeparationName;
    if (name.size() > 255) return false;
    memset(stored, 0, sizeof Fields().cmykSeparationName);
    stored[0] = static_cast<uint8_t>(name.size());
    std::copy(name.begin(), name.end(), stored + 1);
    return true;
}
