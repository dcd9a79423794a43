/// Types shared by every part of the driver's host interface.
///
/// Plain C. All exported functions have C linkage and the names written here; nothing else in the
/// bundle is visible to a host.
#ifndef ZEL_TYPES_H
#define ZEL_TYPES_H

#include <CoreFoundation/CoreFoundation.h>
#include <stdint.h>

#ifdef __cplusplus
#define ZEL_EXTERN_C extern "C"
#else
#define ZEL_EXTERN_C extern
#endif
#define ZEL_EXPORT ZEL_EXTERN_C __attribute__((visibility("default")))

/// Result codes. Functions return 0 for success, one of these, or a positive `errno` value of a
/// file operation. The first code that is not 0 ends an operation and is handed up unchanged.
enum {
    kZELNoError = 0,
    kZELFileNotCreated = -1,       ///< the output file could not be created
    kZELFileNotFound = -43,        ///< a separation profile or PPD file is missing or unusable
    kZELBadParameter = -50,        ///< bad parameter or unsupported pixel format
    kZELOutOfMemory = -108,        ///< memory is short
    kZELUserCancelled = -128,      ///< the user cancelled
    kZELPixelFormatDiffers = -157, ///< a band's pixel format is not the document's
    kZELUnexpectedFailure = 1000   ///< an unforeseen failure while the output was being created
};

/// Pixel formats of host bitmaps and of document rows.
enum {
    kZELFormatGray8 = 8,   ///< 1 byte a pixel: darkness, 0 is white, 255 is black
    kZELFormatXRGB32 = 32, ///< 4 bytes a pixel: ignored, R, G, B
    kZELFormatCMYK32 = 33, ///< 4 bytes a pixel: C, M, Y, K
    kZELFormat64 = 34,     ///< 8 bytes a pixel; the first four are the samples
    kZELFormatRGB96 = 35,  ///< 12 bytes a pixel, RGB
    kZELFormatCMYK96 = 36, ///< 12 bytes a pixel, CMYK
    kZELFormat64Plain = 64 ///< as kZELFormat64
};

/// A rectangle of pixels; `bottom` and `right` are exclusive.
typedef struct ZELRect {
    int32_t top, left, bottom, right;
} ZELRect;

/// A band of host pixels. The pixels stay the host's and are only read during the call.
typedef struct ZELBand {
    const uint8_t *baseAddress; ///< first byte of the row `bounds.top`
    ZELRect bounds;             ///< the rows and columns that the memory holds
    int32_t rowBytes;           ///< bytes from one row to the next; negative: rows upside down
    uint16_t pixelFormat;       ///< one of the kZELFormat codes
} ZELBand;

/// The page image that a host wants to print, native byte order.
typedef struct ZELPageRecord {
    int32_t widthPixels, heightPixels;
    double widthMM, heightMM; ///< size on paper in millimetres
} ZELPageRecord;

/// What ZELPrGetInfo reports, native byte order.
typedef struct ZELDriverInfo {
    int32_t result;                    ///< always 0
    int32_t widthPixels, heightPixels; ///< page in device pixels, truncated
    double widthMM, heightMM;          ///< page in millimetres
    uint16_t firstPage, lastPage, copies;
} ZELDriverInfo;

/// One open driver; made by ZELPrOpen, opaque to hosts.
typedef struct DriverContext DriverContext;

#endif
