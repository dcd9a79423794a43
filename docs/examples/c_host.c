/* c_host BUNDLE FOLDER: prints one page, a grey ramp, as a PostScript file into FOLDER. Plain C: the driver
   is found with dlopen, as any library. */
#include "ZELPrint.h"

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>

static void *library;

static void Stop(const char *message) {
    fprintf(stderr, "c_host: %s\n", message);
    exit(1);
}

static CFURLRef CreateFolderURL(const char *path) {
    CFStringRef text = CFStringCreateWithCString(kCFAllocatorDefault, path, kCFStringEncodingUTF8);
    if (!text) Stop("a path is not UTF-8");
    CFURLRef url = CFURLCreateWithFileSystemPath(kCFAllocatorDefault, text, kCFURLPOSIXPathStyle, 1);
    CFRelease(text);
    return url;
}

#define DRIVER(name) ((__typeof__(&name))dlsym(library, #name))

static void SetOutputFolder(DriverContext *context, Handle record, const char *path) {
    CFURLRef folder = CreateFolderURL(path);
    CFDataRef bookmark = CFURLCreateBookmarkData(kCFAllocatorDefault, folder,
                                                 kCFURLBookmarkCreationSuitableForBookmarkFile, NULL, NULL, NULL);
    CFRelease(folder);
    if (!bookmark) Stop("the folder does not exist");
    CFMutableDictionaryRef settings = CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    CFDictionarySetValue(settings, CFSTR("outputFolder"), bookmark);
    if (!DRIVER(ZELPrSetJobSettings)(context, record, settings)) Stop("the folder does not exist");
    CFRelease(settings);
    CFRelease(bookmark);
}

/* A band may be as low as one row. Pixels are x, R, G, B. */
static void PrintRamp(DriverContext *context, int32_t width, int32_t height) {
    uint8_t *row = calloc((size_t)width, 4);
    if (!row) Stop("memory is short");
    for (int32_t i = 0; i < width * 4; ++i) row[i] = (uint8_t)(i / 4 * 255LL / width);
    for (int32_t y = 0; y < height; ++y) {
        const ZELRect rows = {y, 0, y + 1, width};
        const ZELBand band = {row, rows, width * 4, kZELFormatXRGB32};
        DRIVER(ZELPrPrintBitmap)(context, &band, &rows, &rows);
    }
    free(row);
}

int main(int argc, char **argv) {
    if (argc != 3) Stop("usage: c_host BUNDLE FOLDER");
    CFURLRef url = CreateFolderURL(argv[1]);
    CFBundleRef bundle = CFBundleCreate(kCFAllocatorDefault, url);
    char code[4096];
    snprintf(code, sizeof code, "%s/ZELPostscript", argv[1]);
    library = dlopen(code, RTLD_NOW);
    if (!bundle || !library) Stop("the bundle is not the driver");

    DriverContext *context = NULL;
    if (DRIVER(ZELPrOpen)(bundle, &context) != 0) Stop("the driver does not open");
    Handle record = NewHandleClear(sizeof(PSHPrint)); /* zeros are a bad record: it becomes a good one */
    const ZELPageRecord page = {800, 1000, 203.2, 254}; /* 8 by 10 inches at 100 dpi */
    DRIVER(ZELPrSuggestPage)(context, NULL, &page, 32);
    DRIVER(ZELPrValidate)(context, record);
    SetOutputFolder(context, record, argv[2]);
    DRIVER(ZELPrSetJobName)(context, NULL, CFSTR("Ramp"));
    ZELDriverInfo info; /* the printer has the last word on the page */
    DRIVER(ZELPrGetInfo)(context, record, &info);
    DRIVER(ZELPrOpenDoc)(context);
    DRIVER(ZELPrOpenPage)(context, NULL, NULL);
    PrintRamp(context, info.widthPixels, info.heightPixels);
    DRIVER(ZELPrClosePage)(context);
    DRIVER(ZELPrCloseDoc)(context);
    DisposeHandle(record);
    CFRelease(url);
    /* The first failure on the way is latched, and comes out here. */
    return DRIVER(ZELPrClose)(context) == 0 ? 0 : 1;
}
