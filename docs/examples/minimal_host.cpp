// minimal_host BUNDLE FOLDER: prints one page, a grey ramp, as a PostScript file into FOLDER.
#include "ZELExtensions.h"
#include "ZELPrint.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

[[noreturn]] void Stop(const std::string &message) {
    std::fprintf(stderr, "minimal_host: %s\n", message.c_str());
    std::exit(1);
}

CFURLRef CreateFolderURL(const char *path) {
    CFStringRef text = CFStringCreateWithCString(kCFAllocatorDefault, path, kCFStringEncodingUTF8);
    if (!text) Stop("a path is not UTF-8");
    CFURLRef url =
        CFURLCreateWithFileSystemPath(kCFAllocatorDefault, text, kCFURLPOSIXPathStyle, true);
    CFRelease(text);
    return url;
}

// The header declares the functions; the bundle has them. A macro spares writing each name twice.
#define FIND(bundle, name)                                                                         \
    reinterpret_cast<decltype(&name)>(CFBundleGetFunctionPointerForName(bundle, CFSTR(#name)))

struct Functions {
    explicit Functions(CFBundleRef bundle)
        : open(FIND(bundle, ZELPrOpen)), suggestPage(FIND(bundle, ZELPrSuggestPage)),
          validate(FIND(bundle, ZELPrValidate)),
          getRecordSettings(FIND(bundle, ZELPrGetRecordSettings)),
          setRecordSettings(FIND(bundle, ZELPrSetRecordSettings)),
          getInfo(FIND(bundle, ZELPrGetInfo)), setJobName(FIND(bundle, ZELPrSetJobName)),
          setJobSettings(FIND(bundle, ZELPrSetJobSettings)), openDoc(FIND(bundle, ZELPrOpenDoc)),
          openPage(FIND(bundle, ZELPrOpenPage)), printBitmap(FIND(bundle, ZELPrPrintBitmap)),
          closePage(FIND(bundle, ZELPrClosePage)), closeDoc(FIND(bundle, ZELPrCloseDoc)),
          errorString(FIND(bundle, ZELPrErrorString)), close(FIND(bundle, ZELPrClose)) {
        if (!open || !setRecordSettings) Stop("the bundle is not the driver");
    }

    decltype(&ZELPrOpen) open;
    decltype(&ZELPrSuggestPage) suggestPage;
    decltype(&ZELPrValidate) validate;
    decltype(&ZELPrGetRecordSettings) getRecordSettings;
    decltype(&ZELPrSetRecordSettings) setRecordSettings;
    decltype(&ZELPrGetInfo) getInfo;
    decltype(&ZELPrSetJobName) setJobName;
    decltype(&ZELPrSetJobSettings) setJobSettings;
    decltype(&ZELPrOpenDoc) openDoc;
    decltype(&ZELPrOpenPage) openPage;
    decltype(&ZELPrPrintBitmap) printBitmap;
    decltype(&ZELPrClosePage) closePage;
    decltype(&ZELPrCloseDoc) closeDoc;
    decltype(&ZELPrErrorString) errorString;
    decltype(&ZELPrClose) close;
};

// What the page-setup dialog offers is in the record. With the context instead of null the driver
// would also ask the printer; without a PPD file that is one without colours, for which only Gray
// records are good.
void ChooseResolution(const Functions &driver, Handle record, double dpi) {
    ZELRecordSettings choices = {};
    choices.size = sizeof choices;
    driver.getRecordSettings(record, &choices);
    choices.xDpi = choices.yDpi = dpi;
    if (driver.setRecordSettings(nullptr, record, &choices) != 0) Stop("there is no record");
}

// A host without dialogs names the folder for its documents in the job settings, as a bookmark.
bool SetOutputFolder(const Functions &driver, DriverContext *context, Handle record,
                     const char *path) {
    CFURLRef folder = CreateFolderURL(path);
    CFDataRef bookmark = CFURLCreateBookmarkData(kCFAllocatorDefault, folder,
                                                 kCFURLBookmarkCreationSuitableForBookmarkFile,
                                                 nullptr, nullptr, nullptr);
    CFRelease(folder);
    if (!bookmark) return false;
    CFMutableDictionaryRef settings = CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    CFDictionarySetValue(settings, CFSTR("outputFolder"), bookmark);
    const bool taken = driver.setJobSettings(context, record, settings) != 0;
    CFRelease(settings);
    CFRelease(bookmark);
    return taken;
}

// Bands of any height, from top to bottom. Pixels are x, R, G, B.
void PrintRamp(const Functions &driver, DriverContext *context, int32_t width, int32_t height) {
    constexpr int32_t bandHeight = 64;
    std::vector<uint8_t> pixels(static_cast<size_t>(width) * bandHeight * 4);
    for (int32_t top = 0; top < height; top += bandHeight) {
        const int32_t bottom = std::min(top + bandHeight, height);
        for (int32_t x = 0; x < width; ++x)
            std::fill_n(&pixels[static_cast<size_t>(x) * 4], 4, uint8_t(x * 255LL / width));
        for (int32_t y = 1; y < bottom - top; ++y)
            std::copy_n(pixels.begin(), width * 4, pixels.begin() + ptrdiff_t{y} * width * 4);
        const ZELRect rows = {top, 0, bottom, width};
        const ZELBand band = {pixels.data(), rows, width * 4, kZELFormatXRGB32};
        driver.printBitmap(context, &band, &rows, &rows);
    }
}

void PrintDocument(const Functions &driver, DriverContext *context, Handle record,
                   const char *folder) {
    // 8 by 10 inches at 100 dpi; the pixels to be handed over are 32 bits deep.
    const ZELPageRecord page = {800, 1000, 203.2, 254};
    driver.suggestPage(context, nullptr, &page, 32);
    driver.validate(context, record); // a record of zeros is bad: it becomes a good one
    ChooseResolution(driver, record, 100);
    if (!SetOutputFolder(driver, context, record, folder)) Stop("the folder does not exist");
    driver.setJobName(context, nullptr, CFSTR("Ramp"));

    // The printer has the last word on the page: what is printed are the pixels that it wants.
    ZELDriverInfo info;
    driver.getInfo(context, record, &info);
    driver.openDoc(context);
    driver.openPage(context, nullptr, nullptr);
    PrintRamp(driver, context, info.widthPixels, info.heightPixels);
    driver.closePage(context);
    driver.closeDoc(context);
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 3) Stop("usage: minimal_host BUNDLE FOLDER");
    CFURLRef url = CreateFolderURL(argv[1]);
    CFBundleRef bundle = CFBundleCreate(kCFAllocatorDefault, url);
    CFRelease(url);
    if (!bundle) Stop("there is no bundle");
    const Functions driver(bundle);

    DriverContext *context = nullptr;
    if (driver.open(bundle, &context) != 0) Stop("the driver does not open");
    Handle record = NewHandleClear(sizeof(PSHPrint));
    PrintDocument(driver, context, record, argv[2]);
    DisposeHandle(record);

    // No result was looked at on the way: the first failure is latched, and comes out here.
    const int32_t code = driver.close(context);
    if (code == 0) return 0;
    unsigned char text[256];
    const int32_t length = driver.errorString(nullptr, code, text);
    Stop(std::string(text + 1, text + 1 + length) + " (" + std::to_string(code) + ")");
}
