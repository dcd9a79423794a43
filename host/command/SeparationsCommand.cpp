// zelprint separations [--json]: the CMYK separations that the driver offers.
#include "host/command/CommandLine.h"

#include "host/separations/Separations.h"
#include "host/terminal/Console.h"
#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>

namespace {

ExitStatus ListSeparations(const std::string &bundlePath, bool asJSON) {
    const DriverBundle bundle(bundlePath);
    const std::vector<std::string> names = SeparationNames(bundle);
    std::string lines;
    for (const std::string &name : names)
        lines += PlainText(name) + "\n";
    Answer(asJSON ? nlohmann::json(names).dump() + "\n" : lines);
    return ExitStatus::Success;
}

} // namespace

void AddSeparationsCommand(CLI::App &app, CommandAction &action, const std::string &bundle) {
    CLI::App *command = app.add_subcommand("separations", "list the CMYK separations on offer");
    const auto asJSON = std::make_shared<bool>(false);
    command->add_flag("--json", *asJSON, "as a JSON array");
    command->callback([asJSON, &action, &bundle] {
        action = [asJSON, &bundle] { return ListSeparations(bundle, *asJSON); };
    });
}
