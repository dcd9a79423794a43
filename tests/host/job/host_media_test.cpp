#include "host/job/Media.h"

#include "host/terminal/ExitStatus.h"
#include <functional>
#include <gtest/gtest.h>

namespace {

PrinterModel Printer() {
    PrinterModel printer;
    printer.builtIn = false;
    printer.pages = {{"A4", "ISO A4", 10, 10, 585, 832}, {"Letter", "US Letter", 0, 0, 612, 792}};
    printer.resolutions = {{"1200x600dpi", "Fine", 1200, 600},
                           {"300dpi", "Draft", 300, 300},
                           {"600dpi", "Normal", 600, 600}};
    printer.defaultResolution = 1;
    printer.custom = CustomLimits{100, 1000, 200, 2000};
    return printer;
}

ExitStatus StatusOf(const std::function<void()> &call) {
    try {
        call();
    } catch (const HostError &error) {
        return error.Status();
    }
    return ExitStatus::Success;
}

TEST(ParsePaperSize, KnowsThreeUnits) {
    EXPECT_DOUBLE_EQ(ParsePaperSize("210x297mm")->width, 210 * 72 / 25.4);
    EXPECT_DOUBLE_EQ(ParsePaperSize("8.5x11in")->height, 792);
    EXPECT_DOUBLE_EQ(ParsePaperSize("100X200pt")->height, 200);
}

TEST(ParsePaperSize, RefusesWhatIsNoSize) {
    for (const char *text : {"", "A4", "210x297", "210mm", "x297mm", "210x297cm", "-1x2mm", "0x5mm",
                             "1e3x2mm", "nanx1mm", "infx1mm", "210x297mm ", "1x2x3mm", "210,5x1mm"})
        EXPECT_FALSE(ParsePaperSize(text)) << text;
}

TEST(ParseDpi, ReadsOneOrTwoNumbers) {
    EXPECT_DOUBLE_EQ(ParseDpi("600")->y, 600);
    EXPECT_DOUBLE_EQ(ParseDpi("1200x600dpi")->x, 1200);
    EXPECT_DOUBLE_EQ(ParseDpi("10")->x, 10);
    EXPECT_DOUBLE_EQ(ParseDpi("10000dpi")->x, 10000);
    for (const char *text : {"", "dpi", "9.99", "10000.01", "600 dpi", "x600", "600x", "0"})
        EXPECT_FALSE(ParseDpi(text)) << text;
}

TEST(ChooseMedia, FindsPagesByNameAndDisplayName) {
    for (const char *text : {"A4", "ISO A4", "a4", "iso a4"}) {
        const RecordPage page = ChooseMedia(Printer(), text, false);
        EXPECT_EQ(page.name, "A4");
        EXPECT_FALSE(page.custom);
        EXPECT_DOUBLE_EQ(page.width, 575);
        EXPECT_DOUBLE_EQ(page.height, 822);
    }
}

TEST(ChooseMedia, ChecksCustomSizes) {
    const RecordPage page = ChooseMedia(Printer(), "500x700pt", false);
    EXPECT_TRUE(page.custom);
    EXPECT_DOUBLE_EQ(page.width, 500);
    EXPECT_EQ(StatusOf([] { (void)ChooseMedia(Printer(), "99x700pt", false); }), ExitStatus::Usage);
    EXPECT_EQ(StatusOf([] { (void)ChooseMedia(Printer(), "500x2001pt", false); }),
              ExitStatus::Usage);
    EXPECT_EQ(StatusOf([] { (void)ChooseMedia(Printer(), "99x700pt", true); }),
              ExitStatus::Success);
}

TEST(ChooseMedia, WithoutCustomSizes_OnlyEPSTakesThem) {
    PrinterModel printer = Printer();
    printer.custom.reset();
    EXPECT_EQ(StatusOf([&] { (void)ChooseMedia(printer, "500x700pt", false); }), ExitStatus::Usage);
    EXPECT_TRUE(ChooseMedia(printer, "500x700pt", true).custom);
}

TEST(ChooseMedia, UnknownName_ListsTheChoices) {
    try {
        (void)ChooseMedia(Printer(), "A5", false);
        FAIL();
    } catch (const HostError &error) {
        EXPECT_EQ(error.Status(), ExitStatus::Usage);
        EXPECT_NE(std::string(error.what()).find("A4, Letter"), std::string::npos);
    }
}

TEST(ChooseResolution, ByNameOrDisplayName) {
    EXPECT_DOUBLE_EQ(ChooseResolution(Printer(), "Fine").x, 1200);
    EXPECT_DOUBLE_EQ(ChooseResolution(Printer(), "1200x600dpi").y, 600);
    EXPECT_EQ(ChooseResolution(Printer(), "normal").name, "600dpi");
}

TEST(ChooseResolution, ByNumber_TakesTheNearestFinerOfThePrinter) {
    const RecordResolution resolution = ChooseResolution(Printer(), "400");
    EXPECT_EQ(resolution.name, "600dpi");
    EXPECT_DOUBLE_EQ(resolution.x, 400);
    EXPECT_EQ(ChooseResolution(Printer(), "2400").name, "300dpi"); // none is finer: the default
    EXPECT_EQ(ChooseResolution(Printer(), "600").name, "600dpi");
}

TEST(ChooseResolution, Unknown_IsAUsageError) {
    EXPECT_EQ(StatusOf([] { (void)ChooseResolution(Printer(), "best"); }), ExitStatus::Usage);
    EXPECT_EQ(StatusOf([] { (void)ChooseResolution(Printer(), "5"); }), ExitStatus::Usage);
}

} // namespace
