#include "host/CommandLine.h"
#include "host/PrintCommand.h"
#include "host/ProgramPath.h"
#include <platform/Platform.h>

namespace {

/// Several bands and strips of a large page: they are allocated anew all the time.
constexpr int kKeptBytes = 32 << 20;

} // namespace

int main(int argc, char **argv) {
    PlatformKeepFreedMemory(kKeptBytes);
    SetProgramPath(argv[0]);
    return RunCommandLine(argc, argv, PrintCommand);
}
