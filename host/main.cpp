#include "host/command/CommandLine.h"
#include "host/command/PrintCommand.h"
#include "host/driver/ProgramPath.h"
#include "host/readers/RowReader.h"
#include "host/terminal/Cancellation.h"
#include <cstdio>
#include <unistd.h>

int main(int argc, char **argv) {
    Cancellation::Begin(IsJSONWanted(argc, argv));
    SetProgramPath(argv[0]);
    const int status = RunCommandLine(argc, argv, PrintCommand);
    if (!RowReader::HasLeftOne()) return status;
    // Somebody cancelled while a library was at a long piece of work, and it is at it still. All is
    // cleaned up but what it uses.
    (void)fflush(nullptr);
    _exit(status);
}
