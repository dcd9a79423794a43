/// The command line of zelprint: its options and its subcommands.
#pragma once

#include "host/job/JobOptions.h"
#include "host/terminal/ExitStatus.h"
#include <functional>

namespace CLI {
class App;
}

/// What to run once the whole command line has been read; set by the subcommand that was named.
using CommandAction = std::function<ExitStatus()>;

/// Does the command line ask for JSON? Told before it is parsed, which may fail.
[[nodiscard]] bool IsJSONWanted(int argc, char **argv);

/// Runs zelprint. Every failure is one line on standard error, and JSON on standard output for who
/// asks for that. `print` prints a job.
[[nodiscard]] int RunCommandLine(int argc, char **argv,
                                 const std::function<ExitStatus(const JobOptions &)> &print);

/// Each adds one subcommand to `app`. Its callback stores what it does in `action`; failures are
/// thrown as HostError. `bundle` is the value of --bundle, valid when the action runs.
void AddPrinterInfoCommand(CLI::App &app, CommandAction &action, const std::string &bundle);
void AddDefaultsCommand(CLI::App &app, CommandAction &action, const std::string &bundle);
void AddSeparationsCommand(CLI::App &app, CommandAction &action, const std::string &bundle);
void AddQueueCommand(CLI::App &app, CommandAction &action, const std::string &bundle);
void AddMakeSeparationCommand(CLI::App &app, CommandAction &action, const std::string &bundle);
