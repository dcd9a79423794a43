#include "host/separations/SeparationFile.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <sys/stat.h>

namespace {

uint64_t Word(const uint8_t *bytes) {
    return static_cast<uint64_t>(bytes[0] << 8 | bytes[1]);
}

/// The sizes that a profile's header promises.
struct TableSizes {
    explicit TableSizes(const uint8_t *header)
        : grid(header[10]), inputs(Word(header + 48)), outputs(Word(header + 50)) {}
    [[nodiscard]] bool Empty() const { return grid == 0 || inputs == 0 || outputs == 0; }
    [[nodiscard]] uint64_t FileSize() const {
        return 52 + 6 * inputs + 16 * grid * grid * grid + 16 * outputs;
    }

    uint64_t grid, inputs, outputs;
};

std::string ProblemOfContents(const std::string &path, uint64_t size) {
    uint8_t header[52] = {0};
    std::ifstream file(path, std::ios::binary);
    if (!file) return "it cannot be read: " + std::string(strerror(errno));
    file.read(reinterpret_cast<char *>(header), sizeof header);
    if (file.gcount() != sizeof header) return "it is shorter than its header";
    if (memcmp(header, "mft2", 4) != 0) return "it is not a separation profile";
    if (header[8] != 3 || header[9] != 8)
        return "it makes " + std::to_string(header[9]) + " channels of " +
               std::to_string(header[8]) + " instead of 8 of 3";
    const TableSizes sizes(header);
    if (sizes.Empty()) return "its table is empty";
    if (size < sizes.FileSize())
        return "it ends after " + std::to_string(size) + " of " + std::to_string(sizes.FileSize()) +
               " bytes";
    return "its table cannot be used";
}

} // namespace

std::string SeparationFileProblem(const std::string &path) {
    struct stat info {};
    if (stat(path.c_str(), &info) != 0)
        return path + " is not there; put the profile directly into this folder";
    if (!S_ISREG(info.st_mode)) return path + " is not a file";
    return path +
           " cannot be used: " + ProblemOfContents(path, static_cast<uint64_t>(info.st_size));
}
