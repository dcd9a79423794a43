// zelprint make-separation --to CMYK.icc NAME: a separation profile from two ICC profiles.
#include "host/command/CommandLine.h"

#include "host/command/OptionKinds.h"
#include "host/driver/Driver.h"
#include "host/separations/MakeSeparation.h"
#include "host/separations/Separations.h"
#include "host/separations/SystemSeparations.h"
#include "host/terminal/Console.h"
#include <cctype>
#include <memory>
#include <nlohmann/json.hpp>

namespace {

struct Options {
    SeparationRecipe recipe;
    std::string name;
    bool force = false, forSystem = false, json = false;
};

ExitStatus Make(const Options &options, const std::string &bundlePath) {
    CheckSeparationName(options.name);
    if (!MakeCFString(options.name))
        throw HostError(ExitStatus::Usage, "the name is not UTF-8; give another one");
    const std::string folder =
        options.forSystem ? SystemSeparationsFolder() : SeparationsFolder(DriverBundle(bundlePath));
    const std::string bytes = MakeSeparationProfile(options.recipe);
    const std::string path = InstallSeparation(folder, options.name, bytes, options.force);
    const nlohmann::json answer = {{"name", options.name}, {"path", path}};
    Answer(options.json
               ? answer.dump() + "\n"
               : "Separation '" + PlainText(options.name) + "' is in " + PlainText(path) + "\n");
    return ExitStatus::Success;
}

void AddOptions(CLI::App &command, Options &options) {
    SeparationRecipe &recipe = options.recipe;
    command.add_option("NAME", options.name, "what the separation is called")
        ->type_name("")
        ->required();
    command.add_option("--from", recipe.from, "ICC profile of the RGB pixels (default: sRGB)")
        ->type_name("FILE");
    command.add_option("--to", recipe.to, "ICC profile of the CMYK press and paper")
        ->type_name("FILE")
        ->required();
    WordChoice(command, "--intent", recipe.intent, IntentWords(),
               "how colours that cannot be printed are brought in");
    command.add_flag("--black-point-compensation", recipe.blackPointCompensation,
                     "fit the darkest colour to the darkest print");
    command
        .add_option("--ink-limit", recipe.inkLimit,
                    "most ink in all, in percent of one ink, 100 to 400")
        ->type_name("PERCENT")
        ->check(CLI::Range(100.0, 400.0).description(""))
        // The range alone lets through what is no number.
        ->check([](const std::string &text) {
            return std::string(std::isdigit(static_cast<unsigned char>(text[0])) ? ""
                                                                                 : "no number");
        });
    command.add_option("--grid", recipe.gridPoints, "grid points an axis, 2 to 255 (default: 17)")
        ->type_name("N")
        ->check(CLI::Range(2U, 255U).description(""));
    command.add_flag("--system", options.forSystem,
                     "for the print queues of this machine, not for this user");
    command.add_flag("--force", options.force, "replace a separation of that name");
    command.add_flag("--json", options.json, "tell where it is as a JSON object");
}

} // namespace

void AddMakeSeparationCommand(CLI::App &app, CommandAction &action, const std::string &bundle) {
    CLI::App *command =
        app.add_subcommand("make-separation", "make a CMYK separation from ICC profiles");
    const auto options = std::make_shared<Options>();
    AddOptions(*command, *options);
    command->callback([options, &action, &bundle] {
        action = [options, &bundle] { return Make(*options, bundle); };
    });
}
