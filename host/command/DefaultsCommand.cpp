// zelprint defaults [...]: the user's saved defaults, read and set without a window.
#include "host/command/CommandLine.h"

#include "host/command/OptionKinds.h"
#include "host/driver/Driver.h"
#include "host/driver/ProgramPath.h"
#include "host/driver/Record.h"
#include "host/job/JobPlan.h"
#include "host/separations/Separations.h"
#include "host/terminal/Console.h"
#include "host/terminal/TextTable.h"
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <sys/stat.h>

namespace {

using nlohmann::ordered_json;

struct DefaultsOptions {
    std::optional<std::string> ppd, hotFolder, separation;
    std::optional<uint32_t> colourSpace;
    std::optional<bool> eps, rotate, flipH, flipV, queue;
    bool show = false;
    bool json = false;

    [[nodiscard]] bool ChangesRecord() const {
        return separation || colourSpace || eps || rotate || flipH || flipV;
    }
    [[nodiscard]] bool Changes() const { return ChangesRecord() || ppd || hotFolder || queue; }
};

/// The folder as a bookmark has to have it, wherever the command was called.
std::string FolderPath(const std::string &folder) {
    struct stat info {};
    if (stat(folder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode))
        throw HostError(ExitStatus::Input, folder + ": no such folder; make it first");
    return RealPath(folder);
}

void Apply(const DriverBundle &bundle, const DefaultsOptions &options, Record &record) {
    if (options.separation) {
        if (options.colourSpace.value_or(kZELColourSpaceCMYK) != kZELColourSpaceCMYK)
            throw HostError(ExitStatus::Usage,
                            "--separation makes CMYK; leave out --colour-space, or use cmyk");
        CheckSeparation(bundle, *options.separation);
        if (!record.SetSeparation(*options.separation))
            throw HostError(ExitStatus::Usage,
                            "the name of the separation is longer than 255 bytes");
        record.SetColourSpace(kZELColourSpaceCMYK);
    }
    if (options.colourSpace) record.SetColourSpace(*options.colourSpace);
    if (options.eps) record.SetEPS(*options.eps);
    if (options.rotate) record.SetRotated(*options.rotate);
    if (options.flipH) record.SetFlipH(*options.flipH);
    if (options.flipV) record.SetFlipV(*options.flipV);
}

void Save(const DriverSession &session, const DefaultsOptions &options, const std::string &ppd,
          Handle handle) {
    const DriverBundle &bundle = session.Bundle();
    Record record(bundle, handle);
    Apply(bundle, options, record);
    const CFOwner<CFURLRef> printer = ppd.empty() ? CFOwner<CFURLRef>() : MakeFileURL(ppd, false);
    const CFOwner<CFURLRef> folder =
        options.hotFolder ? MakeFileURL(FolderPath(*options.hotFolder), true) : CFOwner<CFURLRef>();
    const Boolean send = options.queue.value_or(false);
    if (!ZEL_CALL(bundle,
                  ZELPrSaveDefaults)(session.Context(), options.ChangesRecord() ? handle : nullptr,
                                     printer.Get(), folder.Get(), options.queue ? &send : nullptr))
        throw HostError(ExitStatus::Output,
                        "the defaults cannot be saved; check the rights of the home folder");
}

/// The saved defaults; of the colours what is saved, whatever the printer has of them.
void ReadDefaults(const DriverSession &session, Handle handle) {
    ZEL_CALL(session.Bundle(), ZELPrDefaults)(session.Context(), handle);
    Record(session.Bundle(), handle)
        .SetColourSpace(ZEL_CALL(session.Bundle(), ZELPrUsersColourSpace)(session.Context()));
}

ordered_json TextOrNull(const std::string &text) {
    return text.empty() ? ordered_json() : ordered_json(text);
}

ordered_json Defaults(const DriverSession &session) {
    const RecordHandle handle(sizeof(PSHPrint));
    ReadDefaults(session, handle.Get());
    const Record record(session.Bundle(), handle.Get());
    const std::string separation = record.Separation();
    return {
        {"ppd", TextOrNull(session.UsersPPD())},
        {"hot_folder", TextOrNull(session.UsersHotFolder())},
        {"queue", ZEL_CALL(session.Bundle(), ZELPrUserSendsToPrintQueue)(session.Context()) != 0},
        {"colour_space", NameOfColourSpace(record.ColourSpace())},
        {"separation", separation.empty() ? "Standard" : separation},
        {"format", record.EPS() ? "eps" : "ps"},
        {"rotate", record.Rotated()},
        {"flip_h", record.FlipH()},
        {"flip_v", record.FlipV()}};
}

std::string DefaultsText(const ordered_json &defaults) {
    TextTable table({"Default", "Value"});
    for (const auto &[name, value] : defaults.items())
        table.AddRow({name, value.is_null()      ? "none"
                            : value.is_boolean() ? (value.get<bool>() ? "yes" : "no")
                                                 : PlainText(value.get<std::string>())});
    return table.Text();
}

ExitStatus RunDefaults(const std::string &bundlePath, const DefaultsOptions &options) {
    const DriverBundle bundle(bundlePath);
    if (options.Changes()) {
        std::string ppd;
        if (options.ppd) ppd = RealPath(*options.ppd);
        if (options.ppd && ppd.empty())
            throw HostError(ExitStatus::Input,
                            *options.ppd + ": no such file; check the name of the PPD file");
        const DriverSession session(bundle, ppd, true);
        const RecordHandle handle(sizeof(PSHPrint));
        ReadDefaults(session, handle.Get());
        Save(session, options, ppd, handle.Get());
        if (!options.show && !options.json) return ExitStatus::Success;
    }
    // What is saved does not depend on the printer.
    const DriverSession session(bundle, std::string(), true);
    const ordered_json defaults = Defaults(session);
    Answer(options.json ? defaults.dump(2) + "\n" : DefaultsText(defaults));
    return ExitStatus::Success;
}

void AddOptions(CLI::App &command, DefaultsOptions &options) {
    command.add_flag("--show", options.show, "show the defaults, also after a change");
    command.add_flag("--json", options.json, "show them as a JSON object");
    Choice(command, "--ppd", options.ppd, "FILE", "PPD file of the printer");
    Choice(command, "--hot-folder", options.hotFolder, "DIR", "folder that receives documents");
    WordChoice(command, "--colour-space,--color-space", options.colourSpace, ColourSpaceWords(),
               "cmyk, gray or rgb");
    Choice(command, "--separation", options.separation, "NAME", "CMYK separation");
    Switch(command, "--eps,!--ps", options.eps,
           "one EPS file a page, or one PostScript file (--ps)");
    Switch(command, "--queue,!--no-queue", options.queue, "hand documents to the print queue");
    Switch(command, "--rotate,!--no-rotate", options.rotate, "turn the page by 90 degrees");
    Switch(command, "--flip-h,!--no-flip-h", options.flipH, "mirror the page left to right");
    Switch(command, "--flip-v,!--no-flip-v", options.flipV, "mirror the page top to bottom");
}

} // namespace

void AddDefaultsCommand(CLI::App &app, CommandAction &action, const std::string &bundle) {
    CLI::App *command = app.add_subcommand("defaults", "show or set the user's saved defaults");
    const auto options = std::make_shared<DefaultsOptions>();
    AddOptions(*command, *options);
    command->callback([options, &action, &bundle] {
        action = [options, &bundle] { return RunDefaults(bundle, *options); };
    });
}
