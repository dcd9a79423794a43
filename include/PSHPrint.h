/// The print record: 416 bytes that a host keeps in a memory handle and saves with its documents.
///
/// Every number is stored big-endian, so that a record saved on one machine is good on another;
/// doubles are IEEE 754 binary64, most significant byte first. A host need not look inside:
/// ZELPrGetRecordSettings and ZELPrSetRecordSettings tell and take native numbers.
#ifndef ZEL_PSHPRINT_H
#define ZEL_PSHPRINT_H

#include <stddef.h>
#include <stdint.h>

enum {
    kZELColourSpaceCMYK = 0, ///< colour spaces of `mColourSpace_be`
    kZELColourSpaceGray = 1,
    kZELColourSpaceRGB = 2
};

enum {
    kZELMinimumDpi = 10, ///< limits of `mXDpi_be` and `mYDpi_be`, both inclusive
    kZELMaximumDpi = 10000
};

typedef struct PSHPrint {
    uint8_t mMagic_be[4];     ///< the bytes "POST"
    uint8_t mPadding1[4];     ///< zero
    uint64_t mPageWidth_be;   ///< double: points, of the page as the printer names it (not rotated)
    uint64_t mPageHeight_be;  ///< double: points
    uint64_t mXDpi_be;        ///< double: dots per inch, kZELMinimumDpi to kZELMaximumDpi
    uint64_t mYDpi_be;        ///< double: the same down the page
    char mPageName[41];       ///< the printer's page name, at most 40 bytes, zero-terminated
    char mResolutionName[41]; ///< the printer's resolution name, likewise
    uint8_t mPadding2[2];     ///< zero
    uint32_t mPageIsCustom_be; ///< not 0: width and height are a custom size, the name is unused
    uint32_t mColourSpace_be;  ///< kZELColourSpaceCMYK, ...Gray or ...RGB
    uint32_t mFlipH_be;        ///< not 0: mirrored left to right
    uint32_t mFlipV_be;        ///< not 0: mirrored top to bottom
    uint32_t mRotated_be;      ///< not 0: the page lies on the paper turned by 90 degrees
    uint32_t mEPSFormat_be;    ///< not 0: EPS, one file a page; 0: one PostScript file
    int16_t copies_be;         ///< 1 to 999
    int16_t fromPage_be;       ///< first page to print, counted from 1
    int16_t toPage_be;         ///< last page to print; 999: to the end
    uint8_t cmykSeparationName[256]; ///< Pascal string, UTF-8; empty: "Standard"
    uint8_t mPadding3[6];            ///< zero
} PSHPrint;

#ifdef __cplusplus
#define ZEL_CHECK_OFFSET(field, offset)                                                            \
    static_assert(offsetof(PSHPrint, field) == (offset), "the print record's layout is fixed")
ZEL_CHECK_OFFSET(mMagic_be, 0);
ZEL_CHECK_OFFSET(mPageWidth_be, 8);
ZEL_CHECK_OFFSET(mPageHeight_be, 16);
ZEL_CHECK_OFFSET(mXDpi_be, 24);
ZEL_CHECK_OFFSET(mYDpi_be, 32);
ZEL_CHECK_OFFSET(mPageName, 40);
ZEL_CHECK_OFFSET(mResolutionName, 81);
ZEL_CHECK_OFFSET(mPageIsCustom_be, 124);
ZEL_CHECK_OFFSET(mColourSpace_be, 128);
ZEL_CHECK_OFFSET(mFlipH_be, 132);
ZEL_CHECK_OFFSET(mFlipV_be, 136);
ZEL_CHECK_OFFSET(mRotated_be, 140);
ZEL_CHECK_OFFSET(mEPSFormat_be, 144);
ZEL_CHECK_OFFSET(copies_be, 148);
ZEL_CHECK_OFFSET(fromPage_be, 150);
ZEL_CHECK_OFFSET(toPage_be, 152);
ZEL_CHECK_OFFSET(cmykSeparationName, 154);
ZEL_CHECK_OFFSET(mPadding3, 410);
static_assert(sizeof(PSHPrint) == 416, "the print record has 416 bytes");
#undef ZEL_CHECK_OFFSET
#endif

#endif
