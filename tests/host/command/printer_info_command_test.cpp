// zelprint printer-info, run as a user runs it.
#include "tests/host/RunShell.h"
#include "tests/ppd/PPDFile.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>

namespace {

using nlohmann::json;

constexpr const char *kPrinter =
    "*PPD-Adobe: \"4.3\"\n*ColorDevice: True\n*LanguageLevel: \"3\"\n"
    "*DefaultPageSize: Letter\n"
    "*PageSize Letter/US Letter: \"letter code\"\n*PageSize A4/Gr\xF6\xDF"
    "e: \"a4 code\"\n"
    "*ImageableArea Letter: \"18 36 594.5 756\"\n*ImageableArea A4: \"0 0 595.28 841.89\"\n"
    "*DefaultResolution: 600dpi\n*Resolution 1200x600dpi/Fine: \"fine\"\n"
    "*Resolution 600dpi/a\x1B"
    "b: \"\"\n";

constexpr const char *kCustom = "*CustomPageSize True: \"custom code\"\n"
                                "*ParamCustomPageSize Width: 1 points 72 1008\n"
                                "*ParamCustomPageSize Height: 2 points 90.5 1300\n";

Outcome RunPrinterInfo(const std::string &arguments) {
    return RunShell("ZEL_BUNDLE=" + Quoted(ZEL_TEST_BUNDLE) + " " + Quoted(ZEL_TEST_ZELPRINT) +
                    " printer-info " + arguments);
}

} // namespace

TEST(PrinterInfoCommand, JSON_IsTheDocumentedObject) {
    const PPDFile file(std::string(kPrinter) + kCustom, "Printer.ppd");
    const Outcome outcome = RunPrinterInfo("--json " + file.Path());
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_EQ(json::parse(outcome.output), json::parse(R"({
        "name": "Printer.ppd", "colour": true, "level2": true,
        "pages": [
            {"name": "A4", "ui_name": "Größe", "postscript": "a4 code",
             "area": [0, 0, 595.28, 841.89]},
            {"name": "Letter", "ui_name": "US Letter", "postscript": "letter code",
             "area": [18, 36, 594.5, 756]}],
        "default_page": 1,
        "custom": {"code": "custom code", "min_width": 72, "max_width": 1008,
            "min_height": 90.5, "max_height": 1300, "params": [
            {"name": "Height", "units": "points", "index": 2, "min": 90.5, "max": 1300},
            {"name": "Width", "units": "points", "index": 1, "min": 72, "max": 1008}]},
        "resolutions": [
            {"name": "1200x600dpi", "ui_name": "Fine", "postscript": "fine",
             "x_dpi": 1200, "y_dpi": 600},
            {"name": "600dpi", "ui_name": "a\u001bb", "postscript": "",
             "x_dpi": 600, "y_dpi": 600}],
        "default_resolution": 1})"));
}

TEST(PrinterInfoCommand, JSON_WritesWholeNumbersWithoutAFraction) {
    const PPDFile file(kPrinter);
    const std::string output = RunPrinterInfo(file.Path() + " --json").output;
    EXPECT_NE(output.find("\"area\":[18,36,594.5,756]"), std::string::npos) << output;
    EXPECT_NE(output.find("\"x_dpi\":1200,"), std::string::npos) << output;
    EXPECT_NE(output.find("\"custom\":null"), std::string::npos) << output;
}

TEST(PrinterInfoCommand, Table_ShowsPagesCustomRangeAndResolutions) {
    const PPDFile file(std::string(kPrinter) + kCustom, "Printer.ppd");
    const Outcome outcome = RunPrinterInfo(file.Path());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output,
              "Printer.ppd\n"
              "colour, PostScript Level 2\n"
              "\n"
              "   Page    Shown as   Printable mm   Printable pt     Imageable area pt\n"
              "   A4      Größe      210.0 x 297.0  595.28 x 841.89  0 0 595.28 841.89\n"
              "*  Letter  US Letter  203.4 x 254.0  576.5 x 720      18 36 594.5 756\n"
              "\n"
              "Custom pages\n"
              "  width   25.4 to 355.6 mm (72 to 1008 pt)\n"
              "  height  31.9 to 458.6 mm (90.5 to 1300 pt)\n"
              "  Parameter  Type    Position  Range\n"
              "  Height     points  2         90.5 to 1300\n"
              "  Width      points  1         72 to 1008\n"
              "\n"
              "   Resolution   Shown as  dpi\n"
              "   1200x600dpi  Fine      1200 x 600\n"
              "*  600dpi       a?b       600 x 600\n"
              "\n"
              "* is the printer's default\n");
}

TEST(PrinterInfoCommand, PrinterWithoutPages_IsShownAsSuch) {
    const PPDFile file("*PPD-Adobe: \"4.3\"\n*DefaultPageSize: A4\n*DefaultResolution: 300dpi\n");
    const Outcome outcome = RunPrinterInfo(file.Path());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.output.find("No pages: this printer cannot be printed to.\n"),
              std::string::npos)
        << outcome.output;
    EXPECT_NE(outcome.output.find("No custom page sizes.\n"), std::string::npos);
    EXPECT_EQ(RunPrinterInfo("--json " + file.Path()).status, 0);
}

TEST(PrinterInfoCommand, RefusedFile_ExitsWith1AndTheParsersMessage) {
    const struct {
        const char *content, *message;
    } cases[] = {
        {"%!PS\n", "Not a PPD file"},
        {"*PPD-Adobe: \"4.3\"\n", "*DefaultPageSize not found"},
        {"*PPD-Adobe: \"4.3\"\n*DefaultPageSize: A4\n", "*DefaultResolution not found"},
        {"*PPD-Adobe: \"4.3\"\n*DefaultPageSize: ^A4\n",
         "*DefaultPageSize symbol value not supported"},
    };
    for (const auto &c : cases) {
        const PPDFile file(c.content);
        for (const char *option : {"", " --json"}) {
            const Outcome outcome = RunPrinterInfo(file.Path() + option);
            EXPECT_EQ(outcome.status, 1);
            EXPECT_NE(outcome.output.find(c.message), std::string::npos) << outcome.output;
        }
    }
}

TEST(PrinterInfoCommand, WhatIsNoFile_IsRefused) {
    for (const char *path : {"/no/such/printer.ppd", "/tmp", "/dev/zero"}) {
        const Outcome outcome = RunPrinterInfo(path);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_NE(outcome.output.find("Not a PPD file"), std::string::npos) << outcome.output;
    }
}
