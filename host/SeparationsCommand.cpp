// zelprint separations [--json]: the CMYK separations that the driver offers.
#include "host/CommandLine.h"

#include "host/Driver.h"
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

namespace {

ExitStatus ListSeparations(const std::string &bundlePath, bool asJSON) {
    const DriverBundle bundle(bundlePath);
    const CFOwner<CFArrayRef> names(ZEL_CALL(bundle, ZELPrCopySeparationNames)());
    nlohmann::json list = nlohmann::json::array();
    for (CFIndex i = 0; names && i < CFArrayGetCount(names.Get()); ++i)
        list.push_back(
            TextOfCFString(static_cast<CFStringRef>(CFArrayGetValueAtIndex(names.Get(), i))));
    if (asJSON) {
        (void)printf("%s\n", list.dump().c_str());
        return ExitStatus::Success;
    }
    for (const auto &name : list)
        (void)printf("%s\n", name.get<std::string>().c_str());
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
