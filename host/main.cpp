#include "host/CommandLine.h"
#include "host/Driver.h"

namespace {

ExitStatus PrintNothing(const JobOptions &options) {
    const DriverBundle bundle(options.bundle);
    throw HostError(ExitStatus::Usage, "no file to print; see zelprint --help");
}

} // namespace

int main(int argc, char **argv) {
    SetProgramPath(argv[0]);
    return RunCommandLine(argc, argv, PrintNothing);
}
