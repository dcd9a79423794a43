/* c_host BUNDLE FOLDER: prints one page, a grey ramp, as a PostScript file into FOLDER. Plain C: the driver
   is found with dlopen, as any library. */
#include "ZELExtensions.h"
#include "ZELPrint.h"

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static void *library;
#define DRIVER(name) ((__typeof__(&name))dlsym(library, #name))

static void *Need(const void *thing, const char *message) {
    if (!thing) fprintf(stderr, "c_host: %s\n", message), exit(1);
    return (void *)thing;
}

static CFURLRef FolderURL(const char *path) {
    return Need(CFURLCreateFromFileSystemRepresentation(NULL, (const UInt8 *)path, (CFIndex)strlen(path), 1),
                "a path is not UTF-8");
}

static void SetOutputFolder(DriverContext *context, Handle record, const char *path) {
    CFDataRef place = CFURLCreateBookmarkData(NULL, FolderURL(path), kCFURLBookmarkCreationSuitableForBookmarkFile,
                                              NULL, NULL, NULL);
    CFMutableDictionaryRef settings =
        CFDictionaryCreateMutable(NULL, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    CFDictionarySetValue(settings, CFSTR("outputFolder"), Need(place, "the folder does not exist"));
    DRIVER(ZELPrSetJobSettings)(context, record, settings);
}

/* A band may be as low as one row. Pixels are x, R, G, B. */
static void PrintRamp(DriverContext *context, int32_t width, int32_t height) {
    uint8_t *row = Need(calloc((size_t)width, 4), "memory is short");
    for (int32_t i = 0; i < width * 4; ++i) row[i] = (uint8_t)(i / 4 * 255LL / width);
    for (int32_t y = 0; y < height; ++y) {
        const ZELRect rows = {y, 0, y + 1, width};
        const ZELBand band = {row, rows, width * 4, kZELFormatXRGB32};
        DRIVER(ZELPrPrintBitmap)(context, &band, &rows, &rows);
    }
    free(row);
}

int main(int argc, char **argv) {
    Need(argc == 3 ? argv : NULL, "usage: c_host BUNDLE FOLDER");
    char code[4096];
    snprintf(code, sizeof code, "%s/ZELPostscript", argv[1]);
    CFBundleRef bundle = Need(CFBundleCreate(NULL, FolderURL(argv[1])), "there is no bundle");
    library = Need(dlopen(code, RTLD_NOW), "the bundle is not the driver");
    DriverContext *context = NULL;
    DRIVER(ZELPrOpen)(bundle, &context);
    Need(context, "the driver does not open");

    Handle record = NewHandleClear(sizeof(PSHPrint)); /* zeros are a bad record: it becomes a good one */
    const ZELPageRecord page = {800, 1000, 203.2, 254}; /* 8 by 10 inches at 100 dpi */
    DRIVER(ZELPrSuggestPage)(context, NULL, &page, 32);
    DRIVER(ZELPrValidate)(context, record);
    ZELRecordSettings choices = {.size = sizeof choices};
    DRIVER(ZELPrGetRecordSettings)(record, &choices);
    choices.xDpi = choices.yDpi = 100; /* whatever the printer's: enough for a ramp */
    DRIVER(ZELPrSetRecordSettings)(NULL, record, &choices);
    SetOutputFolder(context, record, argv[2]);
    DRIVER(ZELPrSetJobName)(context, NULL, CFSTR("Ramp"));

    ZELDriverInfo info; /* the printer has the last word on the page */
    DRIVER(ZELPrGetInfo)(context, record, &info);
    DRIVER(ZELPrOpenDoc)(context);
    DRIVER(ZELPrOpenPage)(context, NULL, NULL);
    PrintRamp(context, info.widthPixels, info.heightPixels);
    DRIVER(ZELPrClosePage)(context);
    DRIVER(ZELPrCloseDoc)(context);
    /* The first failure on the way is latched, and comes out here. */
    return DRIVER(ZELPrClose)(context) == 0 ? 0 : 1;
}
