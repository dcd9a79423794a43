#include "tests/dialogs/TestPPD.h"

#include <fstream>

namespace {

std::string Page(const std::string &option, const std::string &area) {
    return "*PageSize " + option + ": \"<< /PageSize [1 1] >> setpagedevice\"\n*ImageableArea " +
           option.substr(0, option.find('/')) + ": \"" + area + "\"\n";
}

std::string CustomPages(double maxWidth, double maxHeight) {
    const std::string width = std::to_string(maxWidth), height = std::to_string(maxHeight);
    return "*MaxMediaWidth: \"" + width + "\"\n*MaxMediaHeight: \"" + height +
           "\"\n*CustomPageSize True: \"pop pop pop setpagesize\"\n"
           "*ParamCustomPageSize Width: 1 points 72 " +
           width + "\n*ParamCustomPageSize Height: 2 points 144 " + height +
           "\n*ParamCustomPageSize WidthOffset: 3 points 0 0\n"
           "*ParamCustomPageSize HeightOffset: 4 points 0 0\n"
           "*ParamCustomPageSize Orientation: 5 int 0 0\n";
}

} // namespace

std::string PPDText(const PPDOptions &options) {
    std::string text = "*PPD-Adobe: \"4.3\"\n*LanguageLevel: \"2\"\n*ColorDevice: ";
    text += options.hasColour ? "True\n" : "False\n";
    text += "*DefaultPageSize: Letter\n*DefaultResolution: 300dpi\n";
    if (options.hasPages) {
        text += Page("Letter/US Letter", "0 0 612 792");
        text += Page("A4", "0 0 595 842");
        text += Page("Tabloid", "0 0 792 1224");
    }
    text += "*Resolution 300dpi: \"\"\n*Resolution 600dpi/600 DPI fine: \"\"\n"
            "*Resolution 1200x600dpi: \"\"\n";
    if (options.hasCustomPages) text += CustomPages(options.maxWidth, options.maxHeight);
    return text + options.extra;
}

std::string ManyPages(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        const std::string n = std::to_string(1000 + i);
        text.append("*PageSize P").append(n).append("/Page number ").append(n);
        text.append(": \"\"\n*ImageableArea P").append(n).append(": \"0 0 200 500\"\n");
    }
    return text;
}

std::string WriteFile(const std::string &folder, const std::string &name, const std::string &text) {
    const std::string path = folder + "/" + name;
    std::ofstream(path, std::ios::binary) << text;
    return path;
}
