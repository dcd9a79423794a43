/// The driver's entry points, in the order in which a host calls them. docs/hosting.md tells the
/// whole story with a complete example.
///
/// All calls come from one thread at a time. Once a call has failed or the user has cancelled, the
/// result stays latched in the context: every later call that takes part in printing does nothing
/// and returns the latched code, and closing a page or document throws its partial output away. The
/// EPS files of pages that another page has followed are finished, and stay.
#ifndef ZEL_PRINT_H
#define ZEL_PRINT_H

#include "PSHPrint.h"
#include "ZELTypes.h"
#include <CoreServices/CoreServices.h>

/// Opens the driver. `bundle` is the driver's own bundle. On success `*context` is the new context,
/// to be given back with ZELPrClose.
ZEL_EXPORT int32_t ZELPrOpen(CFBundleRef bundle, DriverContext **context);

/// Tells the driver which page the host wants to print. `page` may be null (the stored page stays);
/// a `depth` (bits a pixel: 8, 32 or 33 for CMYK) of 0 keeps the stored depth, which is 32 at
/// first. `ignored` is kept for old hosts.
ZEL_EXPORT void ZELPrSuggestPage(DriverContext *context, void *ignored, const ZELPageRecord *page,
                                 uint16_t depth);

/// Makes the print record usable: a bad one is reset to the user's defaults and fitted to the
/// suggested page. Returns true when the record was rewritten. Holding the Option key forces it.
ZEL_EXPORT Boolean ZELPrValidate(DriverContext *context, Handle record);

/// Rewrites the record from the printer's and the user's defaults; cuts the handle to 416 bytes.
ZEL_EXPORT void ZELPrDefaults(DriverContext *context, Handle record);

/// Fills `info` from the record; returns the number of copies. `context` is not used.
ZEL_EXPORT int32_t ZELPrGetInfo(DriverContext *context, Handle record, ZELDriverInfo *info);

/// Runs the page-setup dialog on the record. True when the user confirms: the record has then been
/// changed and saved as the user's defaults. False when the user cancels, or when the dialog cannot
/// be shown because there is no window system: both end the session without an error, so that every
/// later call does nothing and returns 0. False too when it has ended before. A size that the user
/// has typed is the record's as it was typed, with two decimals at most, also when the record has
/// the name of a page of that size: a host takes the page's own from ZELPrCopyPrinterInfo where all
/// decimals count. Main thread only.
ZEL_EXPORT Boolean ZELPrStyle(DriverContext *context, Handle record);

/// Runs the print dialog. True when the user confirms: the record then has the page range and one
/// copy, and the driver knows the hot folder and, from the save panel, the file name. False, with
/// the same consequences, as for ZELPrStyle. Main thread only.
ZEL_EXPORT Boolean ZELPrJob(DriverContext *context, Handle record);

/// Names the job; the driver retains the string. The name is the document's title and the base of
/// its file name, and goes into a PostScript comment as it is.
ZEL_EXPORT int32_t ZELPrSetJobName(DriverContext *context, void *ignored, CFStringRef name);

/// What the job needs besides the record, to keep or to hand to another session: a new dictionary
/// with the numbers "fromPage", "toPage" and "copies" and, when a hot folder is known and exists,
/// its bookmark under "outputFolder" (data, made by CFURLCreateBookmarkData). The caller releases
/// it. Null for a handle shorter than a record.
ZEL_EXPORT CFDictionaryRef ZELPrCopyJobSettings(DriverContext *context, Handle record);

/// Takes over such a dictionary, or one of the host's making with any of its keys: how a host
/// without dialogs sets the hot folder. A value of another type is passed over. False when
/// `settings` is no dictionary or the record too short, and when the hot folder cannot be found;
/// the numbers have then been taken over all the same.
ZEL_EXPORT Boolean ZELPrSetJobSettings(DriverContext *context, Handle record,
                                       CFDictionaryRef settings);

/// Copies page range and copies from one record to another. `context` is not used.
ZEL_EXPORT void ZELPrJobMerge(DriverContext *context, Handle source, Handle destination);

/// Opens the output document. Its record is the handle that the host gave last to ZELPrValidate,
/// ZELPrDefaults, a dialog or one of the calls for job settings (not ZELPrGetInfo or
/// ZELPrJobMerge); it is read now, so changes since then count, and must still be alive. Without
/// any: kZELBadParameter.
ZEL_EXPORT int32_t ZELPrOpenDoc(DriverContext *context);

/// Begins a page. The two page arguments are accepted for old hosts and not used.
ZEL_EXPORT int32_t ZELPrOpenPage(DriverContext *context, const void *a, const void *b);

/// Prints the part `sourceRect` of `band` (in the band's own coordinates) into `destRect` (in page
/// pixels), scaled by nearest neighbour. Bands come from top to bottom; rows that no band covers
/// stay white.
ZEL_EXPORT int32_t ZELPrPrintBitmap(DriverContext *context, const ZELBand *band,
                                    const ZELRect *sourceRect, const ZELRect *destRect);

/// Ends the page. Must be called even after a failure.
ZEL_EXPORT int32_t ZELPrClosePage(DriverContext *context);

/// Ends the document. Must be called even after a failure.
ZEL_EXPORT int32_t ZELPrCloseDoc(DriverContext *context);

/// Latches an error of the host's own, or kZELUserCancelled, unless one is latched already.
ZEL_EXPORT void ZELPrSetError(DriverContext *context, int32_t code);

/// Writes a message for `code` as a Pascal string into `out` (256 bytes); returns its length.
ZEL_EXPORT int32_t ZELPrErrorString(DriverContext *context, int32_t code, StringPtr out);

/// Closes the driver and frees the context. Returns 0 after a cancellation, else the latched code.
ZEL_EXPORT int32_t ZELPrClose(DriverContext *context);

#endif
