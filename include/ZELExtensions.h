/// What a host needs beyond the classic call sequence: lists to choose from, and choices that hold
/// for one open driver instead of being saved as the user's defaults.
#ifndef ZEL_EXTENSIONS_H
#define ZEL_EXTENSIONS_H

#include "PSHPrint.h"
#include "ZELTypes.h"
#include <CoreServices/CoreServices.h>

/// What a host may choose in a print record, with native numbers. Versions to come may add fields
/// at the end, never elsewhere.
typedef struct ZELRecordSettings {
    uint32_t size;        ///< sizeof(ZELRecordSettings), written by the host before every call
    uint32_t colourSpace; ///< kZELColourSpaceCMYK, ...Gray or ...RGB
    /// Points, more than 0: the page as it lies in front of the reader. Of a named page its
    /// imageable area; of a custom page any size within the printer's limits.
    double pageWidth, pageHeight;
    double xDpi, yDpi;           ///< dots per inch, kZELMinimumDpi to kZELMaximumDpi
    int32_t copies;              ///< 1 to 999
    int32_t firstPage, lastPage; ///< 1 to 999, the last not before the first; 999: to the end
    uint8_t pageIsCustom;        ///< flags: 0, or not 0; told as 0 and 1
    uint8_t mirrorHorizontal;    ///< left to right
    uint8_t mirrorVertical;      ///< top to bottom
    uint8_t rotated;             ///< the page lies on the paper turned by 90 degrees
    uint8_t eps;                 ///< EPS, one file a page, instead of one PostScript file
    uint8_t reserved[3];         ///< zero
    char pageName[42], resolutionName[42]; ///< the printer's names, at most 40 bytes and a zero
    char separationName[256];              ///< UTF-8 and a zero; empty: "Standard"
} ZELRecordSettings;

/// Reads a record. What this driver does not know of a longer structure becomes 0. 0, or
/// kZELBadParameter for a handle that holds no record, for null and for a `size` that is none.
ZEL_EXPORT int32_t ZELPrGetRecordSettings(Handle record, ZELRecordSettings *settings);

/// Changes a record to what the settings say; what they say already stays as it is byte for byte.
/// With a context, what its printer cannot print and numbers outside the ranges above are refused:
/// ZELPrValidate leaves a record that was accepted as it is. Without one (null), only what a record
/// has no room for. 0; kZELFileNotFound for a separation that is not there; kZELBadParameter for
/// anything else that is refused, for a handle that holds no record (ZELPrDefaults makes one), for
/// null, for a `size` that is none and for fields that this driver does not know and that are not
/// 0. Unless it returns 0 the record stays as it was. Works in every state of the context.
ZEL_EXPORT int32_t ZELPrSetRecordSettings(DriverContext *context, Handle record,
                                          const ZELRecordSettings *settings);

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

/// Is there a window system, and may it be used? Without one ZELPrStyle and ZELPrJob fail as if
/// they were cancelled, and messages are lines on standard error.
ZEL_EXPORT Boolean ZELPrCanShowDialogs(void);

/// Whether the driver opens windows in this process and looks at the keyboard; it does unless a
/// host says otherwise. With false it is as if there were no window system: for a command, which
/// answers in its terminal. Before a session is opened, so that its messages come where they are
/// wanted.
ZEL_EXPORT void ZELPrUseWindows(Boolean use);

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

/// A function of the platform library, which every host links. From now on `end` is called, and
/// must not return, when the classes below CoreFoundation find no memory. Otherwise they raise an
/// exception: often with a lock in their hands, for which the next call then waits for ever. For a
/// host that is over without memory anyway.
#ifdef __cplusplus
extern "C"
#endif
    void
    ZELPlatformEndWithoutMemory(void (*end)(void));

#endif
