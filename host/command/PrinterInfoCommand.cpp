// zelprint printer-info FILE.ppd [--json]: the printer model that the driver reads from a PPD file.
#include "host/command/PrinterInfoCommand.h"

#include "host/command/CommandLine.h"
#include "host/driver/Driver.h"
#include "host/driver/PPDCheck.h"
#include "host/driver/PrinterModel.h"
#include "host/terminal/Console.h"
#include "host/terminal/TextTable.h"
#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <memory>

namespace {

using nlohmann::ordered_json;

constexpr double kMillimetresPerPoint = 25.4 / 72.0;

// --- From the property list to JSON -------------------------------------------------------------

CFTypeRef ValueOf(CFDictionaryRef dictionary, CFStringRef key) {
    return CFDictionaryGetValue(dictionary, key);
}

ordered_json Text(CFDictionaryRef dictionary, CFStringRef key) {
    return TextOfCFString(static_cast<CFStringRef>(ValueOf(dictionary, key)));
}

ordered_json NumberJSON(CFTypeRef number) {
    constexpr double kExactIntegers = 9007199254740992.0; // 2^53
    double value = 0;
    if (number) CFNumberGetValue(static_cast<CFNumberRef>(number), kCFNumberDoubleType, &value);
    if (value == std::trunc(value) && std::fabs(value) <= kExactIntegers)
        return static_cast<int64_t>(value);
    return value;
}

ordered_json Number(CFDictionaryRef dictionary, CFStringRef key) {
    return NumberJSON(ValueOf(dictionary, key));
}

bool Flag(CFDictionaryRef dictionary, CFStringRef key) {
    const CFTypeRef value = ValueOf(dictionary, key);
    return value && CFBooleanGetValue(static_cast<CFBooleanRef>(value));
}

template <class Convert>
ordered_json List(CFDictionaryRef dictionary, CFStringRef key, Convert convert) {
    const auto *array = static_cast<CFArrayRef>(ValueOf(dictionary, key));
    ordered_json list = ordered_json::array();
    for (CFIndex i = 0; array && i < CFArrayGetCount(array); ++i)
        list.push_back(convert(CFArrayGetValueAtIndex(array, i)));
    return list;
}

ordered_json PageJSON(CFTypeRef value) {
    const auto *page = static_cast<CFDictionaryRef>(value);
    return {{"name", Text(page, CFSTR("name"))},
            {"ui_name", Text(page, CFSTR("ui_name"))},
            {"postscript", Text(page, CFSTR("postscript"))},
            {"area", List(page, CFSTR("area"), NumberJSON)}};
}

ordered_json ParamJSON(CFTypeRef value) {
    const auto *param = static_cast<CFDictionaryRef>(value);
    return {{"name", Text(param, CFSTR("name"))},
            {"units", Text(param, CFSTR("units"))},
            {"index", Number(param, CFSTR("index"))},
            {"min", Number(param, CFSTR("min"))},
            {"max", Number(param, CFSTR("max"))}};
}

ordered_json CustomJSON(CFTypeRef value) {
    if (!value) return nullptr;
    const auto *custom = static_cast<CFDictionaryRef>(value);
    return {{"code", Text(custom, CFSTR("code"))},
            {"min_width", Number(custom, CFSTR("min_width"))},
            {"max_width", Number(custom, CFSTR("max_width"))},
            {"min_height", Number(custom, CFSTR("min_height"))},
            {"max_height", Number(custom, CFSTR("max_height"))},
            {"params", List(custom, CFSTR("params"), ParamJSON)}};
}

ordered_json ResolutionJSON(CFTypeRef value) {
    const auto *resolution = static_cast<CFDictionaryRef>(value);
    return {{"name", Text(resolution, CFSTR("name"))},
            {"ui_name", Text(resolution, CFSTR("ui_name"))},
            {"postscript", Text(resolution, CFSTR("postscript"))},
            {"x_dpi", Number(resolution, CFSTR("x_dpi"))},
            {"y_dpi", Number(resolution, CFSTR("y_dpi"))}};
}

// --- From JSON to text --------------------------------------------------------------------------

/// At most two decimals, none where there is nothing to say.
std::string Short(double value) {
    char text[64];
    (void)std::snprintf(text, sizeof text, "%.2f", value);
    std::string number = text;
    number.erase(number.find_last_not_of('0') + 1);
    if (number.back() == '.') number.pop_back();
    return number == "-0" ? "0" : number;
}

std::string Millimetres(double points) {
    char text[64];
    (void)std::snprintf(text, sizeof text, "%.1f", points * kMillimetresPerPoint);
    return text;
}

double Side(const ordered_json &area, size_t low) {
    return area[low + 2].get<double>() - area[low].get<double>();
}

std::string AreaText(const ordered_json &area) {
    std::string text;
    for (const auto &edge : area)
        text += (text.empty() ? "" : " ") + Short(edge.get<double>());
    return text;
}

std::string PagesText(const ordered_json &info) {
    const ordered_json &pages = info["pages"];
    if (pages.empty()) return "No pages: this printer cannot be printed to.\n";
    TextTable table({"", "Page", "Shown as", "Printable mm", "Printable pt", "Imageable area pt"});
    for (size_t i = 0; i < pages.size(); ++i) {
        const ordered_json &area = pages[i]["area"];
        const double width = Side(area, 0);
        const double height = Side(area, 1);
        table.AddRow({info["default_page"] == i ? "*" : "", pages[i]["name"], pages[i]["ui_name"],
                      Millimetres(width) + " x " + Millimetres(height),
                      Short(width) + " x " + Short(height), AreaText(area)});
    }
    return table.Text();
}

std::string RangeText(const char *label, double low, double high) {
    return std::string(label) + Millimetres(low) + " to " + Millimetres(high) + " mm (" +
           Short(low) + " to " + Short(high) + " pt)\n";
}

std::string CustomText(const ordered_json &custom) {
    if (custom.is_null()) return "No custom page sizes.\n";
    TextTable table({"", "Parameter", "Type", "Position", "Range"});
    for (const auto &param : custom["params"])
        table.AddRow(
            {"", param["name"], param["units"], std::to_string(param["index"].get<int64_t>()),
             Short(param["min"].get<double>()) + " to " + Short(param["max"].get<double>())});
    return "Custom pages\n" + RangeText("  width   ", custom["min_width"], custom["max_width"]) +
           RangeText("  height  ", custom["min_height"], custom["max_height"]) +
           (custom["params"].empty() ? "" : table.Text());
}

std::string ResolutionsText(const ordered_json &info) {
    const ordered_json &resolutions = info["resolutions"];
    TextTable table({"", "Resolution", "Shown as", "dpi"});
    for (size_t i = 0; i < resolutions.size(); ++i) {
        const ordered_json &resolution = resolutions[i];
        table.AddRow({info["default_resolution"] == i ? "*" : "", resolution["name"],
                      resolution["ui_name"],
                      Short(resolution["x_dpi"]) + " x " + Short(resolution["y_dpi"])});
    }
    return table.Text();
}

// --- The command --------------------------------------------------------------------------------

ExitStatus ShowPrinter(const std::string &bundlePath, const std::string &path, bool asJSON) {
    const ordered_json json = ReadPrinterInfo(DriverBundle(bundlePath), path);
    Answer(asJSON ? json.dump() + "\n" : PrinterInfoText(json));
    return ExitStatus::Success;
}

} // namespace

nlohmann::ordered_json ReadPrinterInfo(const DriverBundle &bundle, const std::string &path) {
    const CFOwner<CFURLRef> url = MakeFileURL(path, false);
    if (!url) throw HostError(ExitStatus::Input, kAboutPrinter, path + ": Can't get path to file");
    CheckPPDSize(path);
    CFOwner<CFStringRef> message;
    const CFOwner<CFDictionaryRef> info(
        ZEL_CALL(bundle, ZELPrCopyPrinterInfo)(url.Get(), message.Out()));
    if (!info)
        throw HostError(ExitStatus::Input, kAboutPrinter,
                        path + ": " + WhyRefused(path, message.Get()));
    return PrinterInfoJSON(info.Get());
}

nlohmann::ordered_json PrinterInfoJSON(CFDictionaryRef info) {
    return {{"name", Text(info, CFSTR("name"))},
            {"colour", Flag(info, CFSTR("colour"))},
            {"level2", Flag(info, CFSTR("level2"))},
            {"pages", List(info, CFSTR("pages"), PageJSON)},
            {"default_page", Number(info, CFSTR("default_page"))},
            {"custom", CustomJSON(ValueOf(info, CFSTR("custom")))},
            {"resolutions", List(info, CFSTR("resolutions"), ResolutionJSON)},
            {"default_resolution", Number(info, CFSTR("default_resolution"))}};
}

std::string PrinterInfoText(const nlohmann::ordered_json &info) {
    std::string text = PlainText(info["name"]) + "\n";
    text += info["colour"] ? "colour" : "black and white";
    text += info["level2"] ? ", PostScript Level 2\n\n" : ", PostScript Level 1\n\n";
    text += PagesText(info) + "\n" + CustomText(info["custom"]) + "\n" + ResolutionsText(info);
    return text + "\n* is the printer's default\n";
}

void AddPrinterInfoCommand(CLI::App &app, CommandAction &action, const std::string &bundle) {
    CLI::App *command =
        app.add_subcommand("printer-info", "show what a PPD file says of a printer");
    const auto path = std::make_shared<std::string>();
    const auto asJSON = std::make_shared<bool>(false);
    command->add_option("FILE.ppd", *path, "the printer's description")->type_name("")->required();
    command->add_flag("--json", *asJSON, "as a JSON object");
    command->callback([path, asJSON, &action, &bundle] {
        action = [path, asJSON, &bundle] { return ShowPrinter(bundle, *path, *asJSON); };
    });
}
