#include "ZELExtensions.h"
#include "host/command/CommandLine.h"
#include "host/command/PrintCommand.h"
#include "host/driver/ProgramPath.h"
#include "host/readers/RowReader.h"
#include "host/terminal/Cancellation.h"
#include "host/terminal/LastResort.h"
#include <cstdio>
#include <new>
#include <unistd.h>

namespace {

int Run(int argc, char **argv) {
    try {
        SetProgramPath(argv[0]);
        return RunCommandLine(argc, argv, PrintCommand);
    } catch (const std::bad_alloc &) {
        return LastResort::OutOfMemory();
    }
}

} // namespace

int main(int argc, char **argv) {
    const bool json = IsJSONWanted(argc, argv);
    LastResort::Begin(json);
    ZELPlatformEndWithoutMemory(LastResort::EndWithoutMemory);
    Cancellation::Begin(json);
    const int status = Run(argc, argv);
    LastResort::Leave();
    if (!RowReader::HasLeftOne()) return status;
    // Somebody cancelled while a library was at a long piece of work, and it is at it still. All is
    // cleaned up but what it uses.
    (void)fflush(nullptr);
    _exit(status);
}
