#include "host/job/Destination.h"

#include "host/job/JobTitle.h"
#include "host/job/OutputStaging.h"
#include "host/job/Replacement.h"
#include "host/terminal/ExitStatus.h"
#include <cstdlib>
#include <unistd.h>

namespace {

/// Splits what -o names into folder and file name.
void SplitOutput(const std::string &output, std::string &folder, std::string &name) {
    const size_t slash = output.rfind('/');
    name = slash == std::string::npos ? output : output.substr(slash + 1);
    folder = slash == std::string::npos ? "." : slash == 0 ? "/" : output.substr(0, slash);
    if (name.empty() || name == "." || name == "..")
        throw HostError(ExitStatus::Usage, "-o needs the name of a file, not \"" + output + "\"");
}

bool EndsInEPS(const std::string &name) {
    return name.size() > 4 && name.compare(name.size() - 4, 4, ".eps") == 0;
}

std::string FolderForQueue() {
    if (access(".", W_OK) == 0) return ".";
    const char *temporary = getenv("TMPDIR");
    return temporary ? temporary : "/tmp";
}

} // namespace

Destination PlanDestination(const DriverSession &session, const JobOptions &options,
                            const RecordChoices &choices, const SourceFile &first, bool eps) {
    Destination plan;
    plan.sync = !options.noSync;
    plan.namedInDialog = options.printDialog;
    plan.moreFollow = options.each;
    plan.title = ChooseTitle(options.title, first.Path());
    if (options.hotFolder) plan.folder = *options.hotFolder;
    if (options.output) {
        std::string folder;
        SplitOutput(*options.output, folder, plan.name);
        if (plan.folder.empty()) plan.folder = folder;
        if (eps && !EndsInEPS(plan.name)) plan.name += ".eps";
        CheckReplaceable(plan.folder + "/" + plan.name);
        CheckDocumentMayReplace(plan.folder + "/" + plan.name, options.files, options.force);
        // EPS pages are named after the first.
        if (eps) plan.title = TitleOfFile(plan.name);
    }
    if (plan.folder.empty()) plan.folder = choices.folder;
    if (plan.folder.empty()) plan.folder = session.UsersHotFolder();
    const bool users =
        ZEL_CALL(session.Bundle(), ZELPrUserSendsToPrintQueue)(session.Context()) != 0;
    plan.queue = choices.queue.value_or(users && !eps);
    if (plan.queue && eps)
        throw HostError(ExitStatus::Usage,
                        "an EPS file is no print job; leave out --queue or --eps");
    if (plan.folder.empty() && plan.queue) plan.folder = FolderForQueue();
    if (plan.folder.empty() && !options.dryRun)
        throw HostError(ExitStatus::Usage, "there is no saved hot folder; say where the document "
                                           "goes with --hot-folder DIR or -o FILE");
    return plan;
}
