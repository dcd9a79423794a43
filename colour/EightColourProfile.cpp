#include "colour/EightColourProfile.h"
#include "colour/EightColourTable.h"

#include "ZELICC.h"
#include <cstring>
#include <sys/stat.h>

namespace {

constexpr size_t kHeaderSize = 52;
constexpr uint32_t kInks = 8;
constexpr uint32_t kUsedInks = 4;

uint16_t Word_be(const uint8_t *bytes) {
    return static_cast<uint16_t>(bytes[0] << 8 | bytes[1]);
}

bool ReadHeader(FILE *stream, EightColourProfile &profile) {
    uint8_t header[kHeaderSize];
    if (std::fread(header, 1, sizeof header, stream) != sizeof header) return false;
    if (std::memcmp(header, "mft2", 4) != 0 || header[8] != 3 || header[9] != kInks) return false;
    profile.gridPoints = header[10];
    profile.inputEntries = Word_be(header + 48);
    profile.outputEntries = Word_be(header + 50);
    return profile.gridPoints > 0 && profile.inputEntries > 0 && profile.outputEntries > 0;
}

/// Tells a short file before memory is spent on what its header promises.
bool IsLongEnough(FILE *stream, const EightColourProfile &profile) {
    const uint64_t points = uint64_t{profile.gridPoints} * profile.gridPoints * profile.gridPoints;
    const uint64_t values =
        3 * profile.inputEntries + kInks * points + kInks * uint64_t{profile.outputEntries};
    struct stat info {};
    return fstat(fileno(stream), &info) == 0 &&
           static_cast<uint64_t>(info.st_size) >= kHeaderSize + 2 * values;
}

/// Reads `count` numbers into the beginning of `values`.
bool ReadWords(FILE *stream, std::vector<uint16_t> &values, size_t count) {
    if (std::fread(values.data(), sizeof(uint16_t), count, stream) != count) return false;
    for (size_t i = 0; i < count; ++i) {
        uint8_t bytes[2];
        std::memcpy(bytes, &values[i], sizeof bytes);
        values[i] = Word_be(bytes);
    }
    return true;
}

bool ReadCurve(FILE *stream, std::vector<uint16_t> &curve, size_t entries) {
    curve.resize(entries + 1);
    if (!ReadWords(stream, curve, entries)) return false;
    curve[entries] = curve[entries - 1];
    return true;
}

bool ReadGrid(FILE *stream, EightColourProfile &profile) {
    const size_t n = profile.gridPoints;
    profile.grid.resize(kInks * (n + 1) * (n + 1) * (n + 1));
    return ReadWords(stream, profile.grid, kInks * n * n * n);
}

void SamplePoint(const EightColourProfile &profile, const uint16_t colour[3], uint8_t *inks) {
    uint16_t in[3];
    uint16_t out[kUsedInks] = {};
    for (int i = 0; i < 3; ++i)
        in[i] = ICC_OneDLookup(colour[i], profile.input[i].data(), profile.inputEntries);
    ICC_ThreeDLookup(in, profile.grid.data(), profile.gridPoints, out, kInks, kUsedInks);
    for (uint32_t c = 0; c < kUsedInks; ++c) {
        const uint16_t *curve = profile.output[c].data();
        inks[c] = static_cast<uint8_t>(ICC_OneDLookup(out[c], curve, profile.outputEntries) / 257);
    }
}

} // namespace

bool ReadEightColourProfile(FILE *stream, EightColourProfile &profile) {
    if (!ReadHeader(stream, profile) || !IsLongEnough(stream, profile)) return false;
    for (auto &curve : profile.input)
        if (!ReadCurve(stream, curve, profile.inputEntries)) return false;
    if (!ReadGrid(stream, profile)) return false;
    for (auto &curve : profile.output)
        if (!ReadCurve(stream, curve, profile.outputEntries)) return false;
    return !std::ferror(stream);
}

void SampleEightColourProfile(const EightColourProfile &profile, uint8_t *grid) {
    constexpr size_t n = kGridPointsPerAxis;
    const auto level = [](size_t k) { return static_cast<uint16_t>(k * 65535 >> 2); };
    for (size_t i = 0; i < n * n * n; ++i) {
        const uint16_t colour[3] = {level(i / (n * n)), level(i / n % n), level(i % n)};
        SamplePoint(profile, colour, grid + kGridStepB * i);
    }
}
