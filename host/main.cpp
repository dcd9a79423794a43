#include "host/CommandLine.h"
#include "host/Driver.h"
#include "host/PrintCommand.h"

int main(int argc, char **argv) {
    SetProgramPath(argv[0]);
    return RunCommandLine(argc, argv, PrintCommand);
}
