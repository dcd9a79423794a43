/// What a host needs beyond the classic call sequence: lists to choose from, and choices that hold
/// for one open driver instead of being saved as the user's defaults.
#ifndef ZEL_EXTENSIONS_H
#define ZEL_EXTENSIONS_H

#include "ZELTypes.h"
#include <CoreServices/CoreServices.h>

/// The printer model read from a PPD file (null: the built-in description), or null when the file
/// is refused; then `*message`, if asked for, says why. The caller releases both. Keys:
/// "name" string, "colour" and "level2" booleans, "pages" array, "default_page" number, "custom"
/// dictionary (absent without custom page sizes), "resolutions" array, "default_resolution" number.
/// A page has "name", "ui_name", "postscript" and "area" (four numbers llx, lly, urx, ury, points),
/// and "sheet" (two numbers, width and height of the paper, points) where the file tells it;
/// "custom" has "code", "min_width", "max_width", "min_height", "max_height" (points) and "params",
/// an array of "name", "units", "index", "min", "max"; a resolution has "name", "ui_name",
/// "postscript", "x_dpi" and "y_dpi". "ui_name" is read in the file's *LanguageEncoding; other text
/// that is not UTF-8 is taken byte for byte as Latin-1.
ZEL_EXPORT CFDictionaryRef ZELPrCopyPrinterInfo(CFURLRef ppd, CFStringRef *message);

/// The names of the separations that the driver offers now, "Standard" first. The caller releases
/// the array. Null when the user's profiles folder cannot be told.
ZEL_EXPORT CFArrayRef ZELPrCopySeparationNames(void);

/// The folder in which the driver looks for the user's separation profiles; it need not exist. The
/// caller releases the URL. Null when it cannot be told.
ZEL_EXPORT CFURLRef ZELPrCopySeparationsFolder(void);

/// A way from light to ink, as documents have it.
typedef struct ZELSeparation ZELSeparation;

/// Loads the separation of that name (null or empty: "Standard"). 0; kZELFileNotFound or
/// kZELOutOfMemory, and `*separation` is null. The caller releases it.
ZEL_EXPORT int32_t ZELPrCreateSeparation(CFStringRef name, ZELSeparation **separation);
/// Separates `count` pixels x, R, G, B into interleaved C, M, Y, K. Any thread.
ZEL_EXPORT void ZELPrSeparate(const ZELSeparation *separation, const uint8_t *src, uint64_t count,
                              uint8_t *dst);
/// Null is allowed.
ZEL_EXPORT void ZELPrReleaseSeparation(ZELSeparation *separation);

/// Makes this context print with the given PPD file, whatever printer the user has chosen.
/// 0, or kZELFileNotFound when the file is refused: the context then keeps its printer and
/// `*message`, if asked for, says why (the caller releases it).
ZEL_EXPORT int32_t ZELPrSetPrinter(DriverContext *context, CFURLRef ppd, CFStringRef *message);

/// The PPD file that the user has chosen, as it is saved now; null when there is none or it cannot
/// be found (a path that an old version saved is told even if nothing is there any more). It need
/// not be the printer of this context. The caller releases the URL.
ZEL_EXPORT CFURLRef ZELPrCopyUsersPrinter(DriverContext *context);

/// Has the user chosen a PPD file, whether it is still there or not?
ZEL_EXPORT Boolean ZELPrUserHasChosenPrinter(DriverContext *context);

/// The hot folder that the user has chosen in the print dialog, as it is saved now; null when there
/// is none or it cannot be found, as for the printer. The caller releases the URL, and decides
/// whether it is this context's: see ZELPrSetJobSettings.
ZEL_EXPORT CFURLRef ZELPrCopyUsersHotFolder(DriverContext *context);

/// Whether the user has chosen that documents go to the default print queue, as it is saved now.
/// False when the user has not said.
ZEL_EXPORT Boolean ZELPrUserSendsToPrintQueue(DriverContext *context);

/// The colour space (kZELColourSpace...) that the user has chosen, as it is saved now.
/// ZELPrDefaults gives a record that of the printer where that has no colour.
ZEL_EXPORT uint32_t ZELPrUsersColourSpace(DriverContext *context);

/// Saves choices as the user's defaults, as a confirmed dialog does: for a machine without windows.
/// Of `record`, its colour space, separation, mirroring, turn and file format; `ppd` and
/// `hotFolder` are where things are that exist; `*send`, whether documents go to the default print
/// queue. What is null stays as it is saved. Contexts that are open keep their printer. False when
/// a place cannot be remembered, and then nothing is saved, or when the preferences cannot be
/// written.
ZEL_EXPORT Boolean ZELPrSaveDefaults(DriverContext *context, Handle record, CFURLRef ppd,
                                     CFURLRef hotFolder, const Boolean *send);

/// Makes this context hand its documents to the default print queue, or not, whatever the user has
/// chosen; the page-setup dialog shows it, and what is confirmed there counts from then on.
ZEL_EXPORT void ZELPrSetSendToPrintQueue(DriverContext *context, Boolean send);

/// How many bytes the driver has made of the document that was closed last, in all its files
/// together; 0 before there was one. ZELPrCloseDoc reports success even when the system took less
/// than it was given: files that are shorter than this have lost something, the last bytes or some
/// in the middle.
ZEL_EXPORT uint64_t ZELPrDocumentLength(DriverContext *context);

/// As ZELPrOpen, with the printer of a PPD file (null: the built-in description) instead of the one
/// that the user has chosen, which is not looked for, and of which nothing is said.
/// kZELFileNotFound when the file is refused; then `*message`, if asked for, says why (the caller
/// releases it).
ZEL_EXPORT int32_t ZELPrOpenWithPrinter(CFBundleRef bundle, CFURLRef ppd, DriverContext **context,
                                        CFStringRef *message);

/// The model of the printer that this context prints with: the user's, or the one that was set or
/// chosen in the page-setup dialog. Keys as for ZELPrCopyPrinterInfo. `*ppd`, if asked for, becomes
/// its PPD file, which may be gone by now, and null for the built-in description. The caller
/// releases both.
ZEL_EXPORT CFDictionaryRef ZELPrCopyPrinter(DriverContext *context, CFURLRef *ppd);

/// How many pages the host's document has, for the print dialog to tell; 0: it does not say.
ZEL_EXPORT void ZELPrSetPageCount(DriverContext *context, int32_t pages);

/// Has the last dialog returned false because it could not be shown or failed, and not because the
/// user cancelled it? The driver has said why on standard error. Main thread only.
ZEL_EXPORT Boolean ZELPrDialogFailed(void);

/// Cancels the dialog that is open. A sheet, panel or alert above the dialog is closed first, by a
/// call of its own: call it again every now and then until the dialog has returned. Any thread;
/// returns at once.
ZEL_EXPORT void ZELPrCancelDialog(void);

/// Is there a window system? Without one ZELPrStyle and ZELPrJob fail as if they were cancelled,
/// and messages are lines on standard error.
ZEL_EXPORT Boolean ZELPrCanShowDialogs(void);

/// Gives the file `from` the name `to`, in one step, unless something has it: so that a document
/// stands in a watched folder at once and whole, and in nobody's place. Both are paths on one file
/// system, as that has them. 0, or an `errno` value: EEXIST when the name is taken; EINVAL, ENOSYS
/// or another when that file system cannot do it.
ZEL_EXPORT int32_t ZELPrMoveWithoutReplacing(const char *from, const char *to);

/// Makes the folder `to`, which the user has made and only the user may enter, give the group and
/// the access rights to files made in it that the folder `from` gives: so that a document that is
/// moved from one to the other is as if it had been made there. 0, or an `errno` value: EPERM when
/// the user may not.
ZEL_EXPORT int32_t ZELPrInheritRights(const char *from, const char *to);

/// Hands a copy of the finished document `path` to the default print queue, as the driver does with
/// documents of its own, and waits until the queue has it. The file stays. False when the queue
/// does not take it, or when there is no print command.
ZEL_EXPORT Boolean ZELPrHandToPrintQueue(const char *path);

/// Asks the allocator of this process to keep up to `bytes` of freed memory for its next use
/// instead of giving it back to the system: for a host that allocates the memory of its bands again
/// and again. A hint, for good.
ZEL_EXPORT void ZELPrKeepFreedMemory(int32_t bytes);

#endif
