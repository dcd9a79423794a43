// Any bytes as a settings file: it is refused, or has all that a job asks it for.
#include "PSHPrint.h"
#include "fuzz/MemoryFile.h"
#include "host/job/SettingsFile.h"
#include "host/terminal/ExitStatus.h"

#include <cstring>

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static MemoryFile file;
    file.Hold(data, size);
    try {
        const SavedSettings settings = ReadSettings(file.Path());
        Require(settings.record.size() == sizeof(PSHPrint));
        Require(std::memcmp(settings.record.data(), data, sizeof(PSHPrint)) == 0);
        Require(bool(settings.jobSettings));
        (void)OutputFolderOf(settings.jobSettings.Get());
    } catch (const HostError &error) {
        Require(error.Status() == ExitStatus::Input);
    }
    return 0;
}
