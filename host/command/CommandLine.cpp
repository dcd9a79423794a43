#include "host/command/CommandLine.h"

#include "host/command/HelpFormatter.h"
#include "host/command/LpOptions.h"
#include "host/command/OptionKinds.h"
#include "host/command/PlacementOptions.h"
#include "host/command/Report.h"
#include "host/job/JobTitle.h"
#include "host/terminal/Console.h"
#include "host/terminal/LastResort.h"
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <memory>

namespace {

/// An option that `read` takes into the wishes, or complains about.
void Wish(CLI::App &app, const char *name, PlacementWishes &wishes, const char *what,
          const char *help, std::string (*read)(const std::string &, PlacementWishes &)) {
    app.add_option_function<std::string>(
           name,
           [&wishes, name, read](const std::string &text) {
               const std::string problem = read(text, wishes);
               if (!problem.empty()) throw CLI::ValidationError(name, problem);
           },
           help)
        ->type_name(what)
        ->check(Filled());
}

void AddPlacementOptions(CLI::App &app, JobOptions &options) {
    app.option_defaults()->group("Size and place");
    Wish(app, "--scale", options.placement, "fit|shrink|fill|none|PERCENT",
         "size of the pages; shrink: their own if it fits, else as large as fits", ReadScale);
    Wish(app, "--position", options.placement, "PLACE", "centre, top, top-left and so on",
         ReadPosition);
    Switch(app, "--auto-rotate,!--no-auto-rotate", options.autoRotate,
           "turn pages that are larger so (done unless --rotate is given), or never");
}

void AddJobOptions(CLI::App &app, JobOptions &options) {
    // As everywhere, the last of several says what holds.
    app.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    Choice(app, "FILE", options.files, "", "images and PDF files; - is standard input")
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    app.option_defaults()->group("What to print");
    app.add_option("-n,--copies", options.copies, "number of copies, 1 to 999")
        ->type_name("N")
        ->check(CLI::Range(1, 999).description(""));
    app.add_flag("--each", options.each, "make each file a document of its own");
    Choice(app, "-P,--pages", options.pageRange, "LIST", "pages to print, such as 1-4,7,9-");
    app.add_option("-t,--title", options.title, "title of the document, and base of its file name");

    app.option_defaults()->group("Where to");
    Choice(app, "--hot-folder", options.hotFolder, "DIR",
           "folder that receives the finished document");
    Choice(app, "-o,--output", options.outputWords, "NAME",
           "name of the file to write, replacing a document of that name")
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->allow_extra_args(false);
    app.add_flag("--force", options.force, "replace a file that is no document, too");
    Switch(app, "--eps,!--ps", options.eps, "one EPS file a page, or one PostScript file (--ps)");
    Switch(app, "--queue,!--no-queue", options.queue, "hand the document to the print queue");

    AddPlacementOptions(app, options);

    app.option_defaults()->group("How");
    Choice(app, "--ppd", options.ppd, "FILE", "PPD file of the printer");
    app.add_flag("--built-in-printer", options.builtInPrinter,
                 "print for no printer in particular: one A4 page, 300 dpi");
    Choice(app, "--media", options.media, "NAME|WxH{pt,mm,in}|auto",
           "page by its name, its size as WxH with pt, mm or in, or auto: the one nearest to the "
           "document's pages");
    Choice(app, "--resolution", options.resolution, "NAME|DPI",
           "resolution by its name, or in dpi");
    WordChoice(app, "--colour-space,--color-space", options.colourSpace, ColourSpaceWords(),
               "cmyk, gray or rgb");
    Choice(app, "--separation", options.separation, "NAME",
           "CMYK separation; see zelprint separations");
    WordChoice(app, "--pdf-colours,--pdf-colors", options.separatePDF, {"inks", "separate"},
               "in CMYK: keep the inks of PDF files, or separate all colours anew");
    WordChoice(app, "--cmyk-look", options.pdf.look, {"press", "plain"},
               "inks of PDF files in RGB: as on a press, or black as black");
    Switch(app, "--antialias,!--no-antialias", options.pdf.antialias,
           "soften the edges in PDF files; usual below 400 dpi");
    Choice(app, "--password-file", options.passwordFile, "FILE",
           "file that holds the password of encrypted PDF files");
    app.add_option("--page-time", options.pdf.pageSeconds,
                   "give up a PDF page that takes longer to draw")
        ->type_name("SECONDS")
        ->check(CLI::Range(1, 1000000).description(""));
    WordChoice(app, "--intent", options.intent, IntentWords(),
               "how CMYK pictures become light in RGB and Gray; relative if not said");
    Switch(app, "--rotate,!--no-rotate", options.rotate, "turn the page by 90 degrees");
    Switch(app, "--flip-h,!--no-flip-h", options.flipH, "mirror the page left to right");
    Switch(app, "--flip-v,!--no-flip-v", options.flipV, "mirror the page top to bottom");
    app.add_flag("--allow-damaged", options.allowDamaged,
                 "print damaged images as far as they can be made out");
    Choice(app, "--settings", options.settings, "FILE",
           "repeat a job with the settings saved in a file");
    Choice(app, "--save-settings", options.saveSettings, "FILE",
           "save this job's settings to a file");
    app.add_flag("--page-setup", options.pageSetup, "run the driver's page setup dialog first");
    app.add_flag("--print-dialog", options.printDialog, "run the driver's print dialog first");

    app.option_defaults()->group("Program");
    app.add_flag("--no-sync", options.noSync, "do not wait until the document is on the disk");
    app.add_flag("--allow-large", options.allowLarge,
                 "print images that seem too large to be meant");
    app.add_flag("--dry-run", options.dryRun, "tell what would be printed, and print nothing");
    app.add_flag_function(
        "-q,--quiet",
        [&options](std::int64_t count) {
            options.quiet = count > 0;
            SetQuiet(options.quiet);
        },
        "say nothing on success, not even warnings");
    app.add_flag("--json", options.json, "report as JSON on standard output");
    app.add_option("--band-height", options.bandHeight, "rows handed to the driver at a time")
        ->type_name("N")
        ->check(CLI::Range(1, 1000000).description(""));
    Choice(app, "--bundle", options.bundle, "FOLDER",
           "the driver's bundle, if not beside zelprint");
}

/// The system's libraries know text and names as UTF-8 only; other arguments stop them early.
void CheckArguments(int argc, char **argv) {
    for (int i = 1; i < argc; ++i)
        if (!IsUTF8(argv[i]))
            throw HostError(ExitStatus::Usage, "\"" + CleanTitle(argv[i]) +
                                                   "\" is not UTF-8; correct the title, or rename "
                                                   "the file");
}

/// The exit status of a failure that has been told: in one line, and as JSON to a program.
int Fail(const HostError &error, bool asJSON) {
    if (asJSON) {
        // The failure is one whether anybody hears of it or not.
        (void)fputs(ErrorAsJSON(error).c_str(), stdout);
        (void)fflush(stdout);
    }
    ComplainOfFailure(error.what());
    return static_cast<int>(error.Status());
}

/// Help, or the version.
int ShowHelp(const CLI::App &app, const CLI::Success &wish, bool asJSON) {
    (void)app.exit(wish);
    if (std::cout.flush()) return static_cast<int>(ExitStatus::Success);
    return Fail(HostError(ExitStatus::Output, "cannot write to standard output"), asJSON);
}

} // namespace

bool IsJSONWanted(int argc, char **argv) {
    for (int i = 1; i < argc && strcmp(argv[i], "--") != 0; ++i)
        if (strcmp(argv[i], "--json") == 0) return true;
    return false;
}

int RunCommandLine(int argc, char **argv,
                   const std::function<ExitStatus(const JobOptions &)> &print) {
    const bool asJSON = IsJSONWanted(argc, argv);
    CLI::App app("Prints images and PDFs as PostScript through the ZEL PostScript Printer Driver.",
                 "zelprint");
    app.formatter(std::make_shared<HelpFormatter>());
    JobOptions options;
    CommandAction action = [&] {
        TakeOutputWords(options);
        return print(options);
    };
    AddJobOptions(app, options);
    app.set_version_flag("--version", "zelprint " ZEL_VERSION);
    app.option_defaults()->group("Options");
    AddDefaultsCommand(app, action, options.bundle);
    AddPrinterInfoCommand(app, action, options.bundle);
    AddSeparationsCommand(app, action, options.bundle);
    AddMakeSeparationCommand(app, action, options.bundle);
    AddQueueCommand(app, action, options.bundle);
    app.require_subcommand(0, 1);
    try {
        app.parse(argc, argv);
        CheckArguments(argc, argv);
        return static_cast<int>(action());
    } catch (const CLI::Success &wish) {
        return ShowHelp(app, wish, asJSON);
    } catch (const CLI::ParseError &error) {
        return Fail(
            HostError(ExitStatus::Usage, std::string(error.what()) + "; see zelprint --help"),
            asJSON);
    } catch (const HostError &error) {
        return Fail(error, asJSON);
    } catch (const std::bad_alloc &) {
        return LastResort::OutOfMemory();
    } catch (const std::exception &error) {
        return Fail(
            HostError(ExitStatus::Driver, std::string("unexpected failure: ") + error.what()),
            asJSON);
    }
}
