#include "colour/EightColourLUT.h"
#include "colour/DescriptorKeeper.h"
#include "colour/EightColourProfile.h"
#include "colour/RegularFile.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <unistd.h>

const CFStringRef kStandardTableName = CFSTR("Standard");

namespace {

struct FreeTable {
    void operator()(EightColourLUT *table) const { ReleaseEightColourLUT(table); }
};
struct CloseStream {
    void operator()(FILE *stream) const { (void)std::fclose(stream); } // nothing was written
};
using TableOwner = std::unique_ptr<EightColourLUT, FreeTable>;
using StreamOwner = std::unique_ptr<FILE, CloseStream>;

DescriptorKeeper &CheckedFiles() {
    static DescriptorKeeper keeper;
    return keeper;
}

bool HasSignature(const std::string &path) {
    FileDescriptor file = OpenRegularFile(path);
    if (!file) return false;
    char signature[4];
    const bool matches = read(file.Get(), signature, sizeof signature) == sizeof signature &&
                         std::memcmp(signature, "mft2", sizeof signature) == 0;
    CheckedFiles().Keep(std::move(file));
    return matches;
}

StreamOwner OpenStream(const std::string &path) {
    FileDescriptor file = OpenRegularFile(path);
    StreamOwner stream(file ? fdopen(file.Get(), "r") : nullptr);
    if (stream) (void)file.Detach(); // the stream owns it now
    return stream;
}

bool Fill(EightColourLUT &table, FILE *stream) {
    try {
        EightColourProfile profile;
        if (!ReadEightColourProfile(stream, profile)) return false;
        SampleEightColourProfile(profile, table.grid);
        return true;
    } catch (const std::bad_alloc &) {
        return false;
    }
}

/// Position of a colour in the grid: the cell's first corner, and the fractions in 255ths.
struct GridPosition {
    size_t base;
    uint32_t r, g, b;
};

GridPosition Locate(const uint8_t *rgb) {
    uint32_t cell[3];
    uint32_t fraction[3];
    for (int i = 0; i < 3; ++i) {
        cell[i] = rgb[i] * 131588U >> 23; // = rgb[i] * 4 / 255
        fraction[i] = rgb[i] * 4U - cell[i] * 255U;
    }
    return {cell[0] * kGridStepR + cell[1] * kGridStepG + cell[2] * kGridStepB, fraction[0],
            fraction[1], fraction[2]};
}

/// The corners between a cell's first and last, in the order of the fractions, and the weights of
/// all four from the last to the first.
struct Tetrahedron {
    size_t two, one;
    uint32_t weight[4];
};

Tetrahedron ChooseTetrahedron(const GridPosition &p) {
    const auto [base, r, g, b] = p;
    switch ((g > b ? 1 : 0) + (r > b ? 2 : 0) + (r > g ? 4 : 0)) {
        case 0:
            return {24, 4, {r, g - r, b - g, 255 - b}};
        case 1:
            return {24, 20, {r, b - r, g - b, 255 - g}};
        case 3:
            return {120, 20, {b, r - b, g - r, 255 - g}};
        case 4:
            return {104, 4, {g, r - g, b - r, 255 - b}};
        case 6:
            return {104, 100, {g, b - g, r - b, 255 - r}};
        default:
            return {120, 100, {b, g - b, r - g, 255 - r}}; // 7: 2 and 5 contradict themselves
    }
}

} // namespace

bool IsEightColourLUT(CFURLRef url) {
    return HasSignature(PathOfURL(url));
}

EightColourLUT *LoadEightColourLUT(CFURLRef url) {
    const std::string path = PathOfURL(url);
    if (!HasSignature(path)) return nullptr;
    TableOwner table(static_cast<EightColourLUT *>(std::calloc(1, sizeof(EightColourLUT))));
    if (!table) return nullptr;
    const StreamOwner stream = OpenStream(path);
    if (stream && !Fill(*table, stream.get())) return nullptr;
    return table.release();
}

void ReleaseEightColourLUT(EightColourLUT *table) {
    std::free(table);
}

void EightColourLUTSeparate(const EightColourLUT *table, const uint8_t *src, int64_t srcStride,
                            int64_t count, uint8_t *dst, int32_t /*channels*/, int64_t planeStride,
                            int64_t pixelStride) {
    for (; count > 0; --count, src += srcStride, dst += pixelStride) {
        const GridPosition position = Locate(src);
        const Tetrahedron t = ChooseTetrahedron(position);
        const uint8_t *corner = table->grid + position.base;
        for (int c = 0; c < 4; ++c, ++corner)
            dst[c * planeStride] =
                static_cast<uint8_t>((corner[124] * t.weight[0] + corner[t.two] * t.weight[1] +
                                      corner[t.one] * t.weight[2] + corner[0] * t.weight[3]) /
                                     255);
    }
}
