// zelprint printer-info FILE.ppd [--json]: the printer model that the driver reads from a PPD file.
#include "host/CommandLine.h"

#include "host/Driver.h"
#include <CLI/CLI.hpp>
#include <memory>

void AddPrinterInfoCommand(CLI::App &app, CommandAction &action, const std::string &bundle) {
    (void)app;
    (void)action;
    (void)bundle;
}
