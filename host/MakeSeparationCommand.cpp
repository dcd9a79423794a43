// zelprint make-separation --from RGB.icc --to CMYK.icc NAME: a separation from two ICC profiles.
#include "host/CommandLine.h"

#include "host/Driver.h"
#include <CLI/CLI.hpp>
#include <memory>

void AddMakeSeparationCommand(CLI::App &app, CommandAction &action, const std::string &bundle) {
    (void)app;
    (void)action;
    (void)bundle;
}
