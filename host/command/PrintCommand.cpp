#include "host/command/PrintCommand.h"

#include "host/command/EachCommand.h"
#include "host/command/Report.h"
#include "host/job/Dialogs.h"
#include "host/job/JobSetup.h"
#include "host/job/PlacementPlan.h"
#include "host/job/PrintJob.h"
#include "host/job/RecordChoices.h"
#include "host/readers/ImageModule.h"
#include "host/readers/PNMCheck.h"
#include "host/terminal/Console.h"
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <optional>

namespace {

/// Several bands and strips of a large page: they are allocated anew all the time.
constexpr int kKeptBytes = 32 << 20;

void CheckOptions(const JobOptions &options) {
    if (options.files.empty())
        throw HostError(ExitStatus::Usage, "no file to print; see zelprint --help");
    if (options.ppd && options.builtInPrinter)
        throw HostError(ExitStatus::Usage,
                        "--ppd and --built-in-printer both name a printer; give one of them");
    const bool placed = options.output && options.hotFolder;
    if (placed && options.output->find('/') != std::string::npos)
        throw HostError(ExitStatus::Usage,
                        "-o and --hot-folder both name a folder; give one of them");
    if (options.printDialog && (options.output || options.hotFolder))
        throw HostError(ExitStatus::Usage, "the print dialog asks where the document goes; leave "
                                           "out -o and --hot-folder");
}

void CheckPNMFiles(const std::vector<SourceFile> &files) {
    for (const SourceFile &file : files) {
        if (file.Kind() != FileKind::PNM) continue;
        CheckPNM(file.ReadablePath());
        // Other programs print every image of such a file.
        if (HasSecondPNMImage(file.ReadablePath()))
            Complain(file.Path() +
                     ": it holds several images, and only the first is printed; split it with "
                     "pamsplit to print them all");
    }
}

void TellOfFrames(const std::vector<SourceFile> &files) {
    for (const SourceFile &file : files)
        if (const int frames = file.FurtherFrames(); frames > 0)
            Complain(file.Path() + ": of its " + std::to_string(frames + 1) +
                     " pictures only the first is printed; save the others as files to print them");
}

/// Loading the image module takes as long as opening the driver: both are done at the same time.
void StartModule(const std::vector<SourceFile> &files, bool each) {
    const auto needsModule = [](const SourceFile &file) { return file.NeedsModule(); };
    const auto needsPlugIn = [](const SourceFile &file) { return file.Kind() == FileKind::HEIF; };
    if (std::any_of(files.begin(), files.end(), needsModule))
        StartImageModule(each || std::any_of(files.begin(), files.end(), needsPlugIn));
}

/// The first line of a file. An argument would be everybody's to read.
std::string ReadPassword(const std::string &path) {
    constexpr size_t kLongest = 1000;
    std::ifstream file(path);
    std::string password;
    if (!std::getline(file, password) || password.empty())
        throw HostError(ExitStatus::Input,
                        path + ": no password can be read from it; write it into the first line");
    if (!password.empty() && password.back() == '\r') password.pop_back();
    if (password.size() > kLongest)
        throw HostError(ExitStatus::Input, path + ": its first line is too long for a password");
    return password;
}

/// Says what is good to know, where anybody listens: the document is there all the same.
void Mention(const std::string &text) {
    (void)fputs(text.c_str(), stdout);
    (void)fflush(stdout);
}

ExitStatus Print(const JobOptions &options) {
    CheckOptions(options);
    PDFOptions pdf = options.pdf;
    if (!options.passwordFile.empty()) pdf.password = ReadPassword(options.passwordFile);
    std::vector<SourceFile> files;
    for (const std::string &path : options.files)
        files.emplace_back(path, pdf, options.allowDamaged);
    // One at a time, however many there are.
    files.front().LookAhead();
    const DriverBundle bundle(options.bundle);
    bundle.KeepFreedMemory(kKeptBytes);
    std::optional<WindowSystem> windows;
    if (options.pageSetup || options.printDialog) windows.emplace(bundle);
    StartModule(files, options.each);
    CheckPNMFiles(files);
    TellOfFrames(files);
    const DriverSession session(bundle, PPDOfJob(options), options.quiet);
    const RecordHandle record(sizeof(PSHPrint));
    const JobPlan plan = SetUpJob(session, options, files, record.Get());
    const std::string cut = CutNotice(plan, options.placement);
    if (!cut.empty()) Complain(cut);
    if (options.dryRun) {
        Answer(options.json ? DryRunAsJSON(plan) : DryRunAsText(plan));
        return ExitStatus::Success;
    }
    const JobResult result =
        PrintJob(session, record.Get(), plan, options.bandHeight, options.quiet);
    if (options.json)
        Answer(ReportAsJSON(plan, result));
    else if (!options.quiet)
        Mention(ReportAsText(plan, result));
    return ExitStatus::Success;
}

} // namespace

ExitStatus PrintCommand(const JobOptions &options) {
    if (options.each && !options.files.empty())
        return PrintEach(options, [](const JobOptions &one) { (void)Print(one); });
    return Print(options);
}
