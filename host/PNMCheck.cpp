#include "host/PNMCheck.h"

#include <cstdint>
#include <cstring>
#include <fstream>
#include <limits>
#include <optional>

namespace {

/// A number of the header, with the white space and the comments before it.
std::optional<int64_t> HeaderNumber(std::istream &file) {
    while ((file >> std::ws).peek() == '#')
        file.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    constexpr int64_t kMost = 1000000000; // two of them and a pixel of 6 bytes fit into 63 bits
    int64_t number = 0;
    if (!(file >> number) || number < 1 || number > kMost) return std::nullopt;
    return number;
}

/// Bytes of the samples that follow a header with the magic number P`kind`.
std::optional<int64_t> SizeOfSamples(std::istream &file, char kind) {
    const std::optional<int64_t> width = HeaderNumber(file);
    const std::optional<int64_t> height = HeaderNumber(file);
    if (!width || !height) return std::nullopt;
    if (kind == '4') return (*width + 7) / 8 * *height;
    const std::optional<int64_t> most = HeaderNumber(file);
    if (!most) return std::nullopt;
    return *width * *height * (kind == '6' ? 3 : 1) * (*most > 255 ? 2 : 1);
}

} // namespace

bool HasSecondPNMImage(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    char magic[2] = {0, 0};
    if (!file.read(magic, 2) || magic[0] != 'P' || magic[1] < '4' || magic[1] > '6') return false;
    const std::optional<int64_t> samples = SizeOfSamples(file, magic[1]);
    char next[3] = {0, 0, 0};
    // One byte of white space ends the header.
    if (!samples || !file.seekg(1 + *samples, std::ios::cur) || !file.read(next, 3)) return false;
    return next[0] == 'P' && strchr("456", next[1]) && strchr(" \t\r\n#", next[2]);
}
