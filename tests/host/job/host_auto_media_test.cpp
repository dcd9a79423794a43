#include "host/job/AutoMedia.h"

#include <gtest/gtest.h>

namespace {

/// Sheets with margins, one that does not tell its sheet, and no custom pages.
PrinterModel Printer() {
    PrinterModel printer;
    printer.builtIn = false;
    printer.pages = {{"A5", "", 12, 12, 408, 583, 420, 595},
                     {"A4", "", 12, 12, 583, 830, 595, 842},
                     {"Letter", "", 18, 18, 594, 774, 612, 792},
                     {"Label", "", 0, 0, 288, 432, 0, 0}};
    return printer;
}

PrinterModel CustomPrinter() {
    PrinterModel printer = Printer();
    printer.custom = CustomLimits{100, 900, 200, 3000};
    return printer;
}

TEST(NearestMedia, IsThePageOfTheDocumentsSize_WhicheverWayItLies) {
    const struct {
        DocumentSize size;
        const char *name;
    } cases[] = {
        {{595.276, 841.89}, "A4"}, {{842, 595}, "A4"},    {{597, 842}, "A4"},
        {{612, 792}, "Letter"},    {{420, 595}, "A5"},    {{432, 288}, "Label"},
        {{612, 859}, "A4"},        {{300, 440}, "Label"}, {{2000, 3000}, "A4"},
    };
    for (const auto &c : cases) {
        const RecordPage page = NearestMedia(Printer(), c.size, false);
        EXPECT_EQ(page.name, c.name) << c.size.width << " x " << c.size.height;
        EXPECT_FALSE(page.custom);
    }
    const RecordPage page = NearestMedia(Printer(), {595, 842}, false);
    EXPECT_DOUBLE_EQ(page.width, 571) << "the imageable area";
    EXPECT_DOUBLE_EQ(page.height, 818);
}

TEST(NearestMedia, IsACustomPage_WhereNoneHasTheSize) {
    const RecordPage page = NearestMedia(CustomPrinter(), {500, 700}, false);
    EXPECT_TRUE(page.custom);
    EXPECT_DOUBLE_EQ(page.width, 500);
    EXPECT_DOUBLE_EQ(page.height, 700);
    EXPECT_EQ(NearestMedia(CustomPrinter(), {842, 595}, false).name, "A4");
}

TEST(NearestMedia, IsACustomPageOnItsSide_WhereOnlyThatIsAllowed) {
    const RecordPage page = NearestMedia(CustomPrinter(), {2000, 700}, false);
    EXPECT_TRUE(page.custom);
    EXPECT_DOUBLE_EQ(page.width, 700);
    EXPECT_DOUBLE_EQ(page.height, 2000);
    EXPECT_EQ(NearestMedia(CustomPrinter(), {950, 3000}, false).name, "A4")
        << "too large for a custom page";
}

TEST(NearestMedia, OfEPS_IsTheDocumentsOwnSize) {
    const RecordPage page = NearestMedia(Printer(), {595.276, 841.89}, true);
    EXPECT_TRUE(page.custom);
    EXPECT_DOUBLE_EQ(page.width, 595.276);
    EXPECT_DOUBLE_EQ(page.height, 841.89);
}

} // namespace
