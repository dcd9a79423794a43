#include "host/command/EachCommand.h"

#include "host/command/Report.h"
#include "host/terminal/Cancellation.h"
#include "host/terminal/Console.h"

namespace {

void CheckOptions(const JobOptions &options) {
    const auto refuse = [](const char *option) {
        throw HostError(ExitStatus::Usage, std::string("--each prints several documents, and ") +
                                               option + " is for one; leave out one of them");
    };
    if (options.output) refuse("-o");
    if (options.pageSetup) refuse("--page-setup");
    if (options.printDialog) refuse("--print-dialog");
    if (!options.saveSettings.empty()) refuse("--save-settings");
}

bool EndsAll(ExitStatus status) {
    return status == ExitStatus::Cancelled || status == ExitStatus::Terminated;
}

} // namespace

ExitStatus PrintEach(const JobOptions &options,
                     const std::function<void(const JobOptions &)> &print) {
    CheckOptions(options);
    ExitStatus status = ExitStatus::Success;
    size_t printed = 0;
    const Cancellation cancellation; // what is printed by then is told
    for (const std::string &file : options.files) {
        Cancellation::Check();
        JobOptions one = options;
        one.files = {file};
        try {
            print(one);
            ++printed;
        } catch (const HostError &error) {
            if (EndsAll(error.Status())) throw;
            if (status == ExitStatus::Success) status = error.Status();
            if (options.json) Answer(ErrorAsJSON(error, file));
            ComplainOfFailure(error.what());
        }
    }
    Cancellation::Disregard();
    if (!options.json && !options.quiet && !options.dryRun)
        Answer("printed " + std::to_string(printed) + " of " +
               std::to_string(options.files.size()) +
               (options.files.size() == 1 ? " file\n" : " files\n"));
    return status;
}
