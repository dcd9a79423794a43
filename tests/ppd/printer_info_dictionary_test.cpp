#include "ZELExtensions.h"
#include "tests/ppd/PPDFile.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

constexpr const char *kPrinter =
    "*PPD-Adobe: \"4.3\"\n*ColorDevice: True\n*LanguageLevel: \"3\"\n"
    "*DefaultPageSize: Letter\n"
    "*PageSize Letter/US Letter: \"letter code\"\n*PageSize A4: \"a4 code\"\n"
    "*ImageableArea Letter: \"18 36 594.5 756\"\n*ImageableArea A4: \"10 20 585 822\"\n"
    "*DefaultResolution: 600dpi\n*Resolution 1200x600dpi/Fine: \"fine\"\n*Resolution 600dpi: "
    "\"\"\n";

constexpr const char *kCustom = "*CustomPageSize True: \"custom code\"\n"
                                "*MaxMediaWidth: \"900\"\n"
                                "*ParamCustomPageSize Width: 1 points 72 1008\n"
                                "*ParamCustomPageSize Height: 2 points 90.5 1300\n";

CFRef<CFDictionaryRef> InfoOf(const std::string &content) {
    const PPDFile file(content, "Printer.ppd");
    CFStringRef message = nullptr;
    CFRef<CFDictionaryRef> info(ZELPrCopyPrinterInfo(file.URL().Get(), &message));
    EXPECT_EQ(message, nullptr);
    return info;
}

CFTypeRef Value(CFTypeRef dictionary, CFStringRef key) {
    return CFDictionaryGetValue(static_cast<CFDictionaryRef>(dictionary), key);
}

std::string TextOf(CFTypeRef string) {
    std::vector<char> buffer(1000);
    const bool converted = string && CFStringGetCString(static_cast<CFStringRef>(string),
                                                        buffer.data(), 1000, kCFStringEncodingUTF8);
    return converted ? buffer.data() : "(none)";
}

std::string Text(CFTypeRef dictionary, CFStringRef key) {
    return TextOf(Value(dictionary, key));
}

double Number(CFTypeRef number) {
    double value = -1;
    if (number) CFNumberGetValue(static_cast<CFNumberRef>(number), kCFNumberDoubleType, &value);
    return value;
}

double Number(CFTypeRef dictionary, CFStringRef key) {
    return Number(Value(dictionary, key));
}

CFIndex Count(CFTypeRef array) {
    return CFArrayGetCount(static_cast<CFArrayRef>(array));
}

CFTypeRef Item(CFTypeRef array, CFIndex index) {
    return CFArrayGetValueAtIndex(static_cast<CFArrayRef>(array), index);
}

} // namespace

TEST(PrinterInfoDictionary, HoldsTheModel) {
    const CFRef<CFDictionaryRef> info = InfoOf(kPrinter);
    ASSERT_TRUE(info);
    EXPECT_EQ(Text(info.Get(), CFSTR("name")), "Printer.ppd");
    EXPECT_EQ(Value(info.Get(), CFSTR("colour")), kCFBooleanTrue);
    EXPECT_EQ(Value(info.Get(), CFSTR("level2")), kCFBooleanTrue);
    EXPECT_EQ(Number(info.Get(), CFSTR("default_page")), 1);
    EXPECT_EQ(Number(info.Get(), CFSTR("default_resolution")), 1);
    EXPECT_EQ(Value(info.Get(), CFSTR("custom")), nullptr);
}

TEST(PrinterInfoDictionary, ListsPagesAndResolutions) {
    const CFRef<CFDictionaryRef> info = InfoOf(kPrinter);
    ASSERT_TRUE(info);
    const CFTypeRef pages = Value(info.Get(), CFSTR("pages"));
    ASSERT_EQ(Count(pages), 2);
    EXPECT_EQ(Text(Item(pages, 0), CFSTR("name")), "A4");
    EXPECT_EQ(Text(Item(pages, 1), CFSTR("name")), "Letter");
    EXPECT_EQ(Text(Item(pages, 1), CFSTR("ui_name")), "US Letter");
    EXPECT_EQ(Text(Item(pages, 1), CFSTR("postscript")), "letter code");
    const CFTypeRef area = Value(Item(pages, 1), CFSTR("area"));
    ASSERT_EQ(Count(area), 4);
    const double edges[] = {18, 36, 594.5, 756};
    for (CFIndex i = 0; i < 4; ++i)
        EXPECT_EQ(Number(Item(area, i)), edges[i]);
    const CFTypeRef resolutions = Value(info.Get(), CFSTR("resolutions"));
    ASSERT_EQ(Count(resolutions), 2);
    EXPECT_EQ(Text(Item(resolutions, 0), CFSTR("name")), "1200x600dpi");
    EXPECT_EQ(Text(Item(resolutions, 0), CFSTR("ui_name")), "Fine");
    EXPECT_EQ(Text(Item(resolutions, 0), CFSTR("postscript")), "fine");
    EXPECT_EQ(Number(Item(resolutions, 0), CFSTR("x_dpi")), 1200);
    EXPECT_EQ(Number(Item(resolutions, 0), CFSTR("y_dpi")), 600);
}

TEST(PrinterInfoDictionary, TellsTheSheet_WhereTheFileDoes) {
    const CFRef<CFDictionaryRef> info =
        InfoOf(std::string(kPrinter) +
               "*PaperDimension Letter/US Letter: \"612 792\"\n*PaperDimension A5: \"420 595\"\n");
    ASSERT_TRUE(info);
    const CFTypeRef pages = Value(info.Get(), CFSTR("pages"));
    EXPECT_EQ(Value(Item(pages, 0), CFSTR("sheet")), nullptr);
    const CFTypeRef sheet = Value(Item(pages, 1), CFSTR("sheet"));
    ASSERT_NE(sheet, nullptr);
    ASSERT_EQ(Count(sheet), 2);
    EXPECT_EQ(Number(Item(sheet, 0)), 612);
    EXPECT_EQ(Number(Item(sheet, 1)), 792);
}

TEST(PrinterInfoDictionary, SheetThatMakesNoSense_IsLeftOut) {
    for (const char *size : {"\"612\"", "\"0 792\"", "\"-612 792\"", "\"wide high\"", "\"\""}) {
        const CFRef<CFDictionaryRef> info =
            InfoOf(std::string(kPrinter) + "*PaperDimension Letter: " + size + "\n");
        ASSERT_TRUE(info);
        const CFTypeRef pages = Value(info.Get(), CFSTR("pages"));
        EXPECT_EQ(Value(Item(pages, 1), CFSTR("sheet")), nullptr) << size;
    }
}

TEST(PrinterInfoDictionary, BuiltInPage_LiesOnA4) {
    CFStringRef message = nullptr;
    const CFRef<CFDictionaryRef> info(ZELPrCopyPrinterInfo(nullptr, &message));
    ASSERT_TRUE(info);
    const CFTypeRef sheet = Value(Item(Value(info.Get(), CFSTR("pages")), 0), CFSTR("sheet"));
    ASSERT_NE(sheet, nullptr);
    EXPECT_EQ(Number(Item(sheet, 0)), 595);
    EXPECT_EQ(Number(Item(sheet, 1)), 842);
}

TEST(PrinterInfoDictionary, CustomPages_HaveTheFilesParametersOnly) {
    const CFRef<CFDictionaryRef> info = InfoOf(std::string(kPrinter) + kCustom);
    ASSERT_TRUE(info);
    const CFTypeRef custom = Value(info.Get(), CFSTR("custom"));
    ASSERT_NE(custom, nullptr);
    EXPECT_EQ(Text(custom, CFSTR("code")), "custom code");
    EXPECT_EQ(Number(custom, CFSTR("min_width")), 72);
    EXPECT_EQ(Number(custom, CFSTR("max_width")), 900);
    EXPECT_EQ(Number(custom, CFSTR("min_height")), 90.5);
    EXPECT_EQ(Number(custom, CFSTR("max_height")), 1300);
    const CFTypeRef params = Value(custom, CFSTR("params"));
    ASSERT_EQ(Count(params), 2);
    EXPECT_EQ(Text(Item(params, 0), CFSTR("name")), "Height");
    EXPECT_EQ(Text(Item(params, 0), CFSTR("units")), "points");
    EXPECT_EQ(Number(Item(params, 0), CFSTR("index")), 2);
    EXPECT_EQ(Number(Item(params, 0), CFSTR("min")), 90.5);
    EXPECT_EQ(Number(Item(params, 0), CFSTR("max")), 1300);
}

TEST(PrinterInfoDictionary, TextThatIsNotUTF8_IsTakenAsLatin1) {
    const CFRef<CFDictionaryRef> info =
        InfoOf("*PPD-Adobe: \"4.3\"\n*DefaultPageSize: A4\n*DefaultResolution: 300dpi\n"
               "*PageSize A4/Gr\xF6\xDF"
               "e: \"\x80\"\n*PageSize B5/Gr\xC3\xB6\xC3\x9F"
               "e: \"\"\n");
    ASSERT_TRUE(info);
    const CFTypeRef pages = Value(info.Get(), CFSTR("pages"));
    EXPECT_EQ(Text(Item(pages, 0), CFSTR("ui_name")), "Gr\xC3\xB6\xC3\x9F"
                                                      "e");
    EXPECT_EQ(Text(Item(pages, 0), CFSTR("postscript")), "\xC2\x80");
    EXPECT_EQ(Text(Item(pages, 1), CFSTR("ui_name")), "Gr\xC3\xB6\xC3\x9F"
                                                      "e");
}

TEST(PrinterInfoDictionary, PrinterWithoutPages_HasAnEmptyList) {
    const CFRef<CFDictionaryRef> info =
        InfoOf("*PPD-Adobe: \"4.3\"\n*DefaultPageSize: A4\n*DefaultResolution: 300dpi\n");
    ASSERT_TRUE(info);
    EXPECT_EQ(Count(Value(info.Get(), CFSTR("pages"))), 0);
    EXPECT_EQ(Number(info.Get(), CFSTR("default_page")), 0);
    EXPECT_EQ(Value(info.Get(), CFSTR("colour")), kCFBooleanFalse);
    EXPECT_EQ(Value(info.Get(), CFSTR("level2")), kCFBooleanFalse);
}

TEST(PrinterInfoDictionary, RefusedFile_GivesTheParsersMessage) {
    const PPDFile file("%!PS\n");
    CFStringRef message = nullptr;
    EXPECT_EQ(ZELPrCopyPrinterInfo(file.URL().Get(), &message), nullptr);
    EXPECT_EQ(TextOf(message), "Not a PPD file");
    CFRef<CFStringRef> owner(message);
    EXPECT_EQ(ZELPrCopyPrinterInfo(file.URL().Get(), nullptr), nullptr);
}

TEST(PrinterInfoDictionary, NoFile_IsTheBuiltInDescription) {
    const CFRef<CFDictionaryRef> info(ZELPrCopyPrinterInfo(nullptr, nullptr));
    ASSERT_TRUE(info);
    EXPECT_EQ(Text(info.Get(), CFSTR("name")), "");
    EXPECT_EQ(Text(Item(Value(info.Get(), CFSTR("pages")), 0), CFSTR("postscript")), "a4");
    EXPECT_EQ(Number(Item(Value(info.Get(), CFSTR("resolutions")), 0), CFSTR("x_dpi")), 300);
}
