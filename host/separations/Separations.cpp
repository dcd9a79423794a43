#include "host/separations/Separations.h"

#include "host/terminal/ExitStatus.h"
#include <algorithm>
#include <cerrno>
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

std::vector<std::string> SeparationNames(const DriverBundle &bundle) {
    const CFOwner<CFArrayRef> list(ZEL_CALL(bundle, ZELPrCopySeparationNames)());
    std::vector<std::string> names;
    for (CFIndex i = 0; list && i < CFArrayGetCount(list.Get()); ++i)
        names.push_back(
            TextOfCFString(static_cast<CFStringRef>(CFArrayGetValueAtIndex(list.Get(), i))));
    return names;
}

void CheckSeparation(const DriverBundle &bundle, const std::string &name) {
    const std::vector<std::string> names = SeparationNames(bundle);
    if (name.empty() || std::find(names.begin(), names.end(), name) != names.end()) return;
    std::string list;
    for (const std::string &entry : names)
        list += (list.empty() ? "" : ", ") + entry;
    throw HostError(ExitStatus::Input, kAboutSeparation,
                    "there is no separation called \"" + name + "\"; choose one of " + list +
                        ", or make it with zelprint make-separation");
}

std::string SeparationsFolder(const DriverBundle &bundle) {
    const CFOwner<CFURLRef> url(ZEL_CALL(bundle, ZELPrCopySeparationsFolder)());
    std::string folder = PathOfURL(url.Get());
    if (folder.empty())
        throw HostError(ExitStatus::Output, "the folder of the separation profiles is not known; "
                                            "check that the user has a home folder");
    return folder;
}

std::string SeparationProblem(const DriverBundle &bundle, const std::string &name) {
    const std::string path = SeparationsFolder(bundle) + "/" + name;
    struct stat info {};
    if (stat(path.c_str(), &info) != 0)
        return path + " is not there; put the profile directly into this folder";
    if (!S_ISREG(info.st_mode)) return path + " is not a file";
    return path +
           " cannot be used: " + ProblemOfContents(path, static_cast<uint64_t>(info.st_size));
}
