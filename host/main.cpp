#include "host/CommandLine.h"
#include "host/Driver.h"
#include "host/PrintCommand.h"
#include <platform/Platform.h>

int main(int argc, char **argv) {
    PlatformKeepFreedMemory(); // strips and bands come and go
    SetProgramPath(argv[0]);
    return RunCommandLine(argc, argv, PrintCommand);
}
