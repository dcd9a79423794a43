/// The user's choices, kept between runs in the preferences of the bundle's own identifier: the one
/// module that knows their keys.
///
/// Reading tolerates missing keys and values of the wrong type: the default then holds. Locations
/// are kept as bookmarks, so that renamed and moved items are found again; the older forms, a
/// string path and an alias record, are still read.
#pragma once

#include "PSHPrint.h"
#include "support/CFRef.h"
#include <CoreServices/CoreServices.h>

/// The bookmark stored under `bookmarkKey`; when that key is missing, a bookmark made from what is
/// stored under `legacyKey`, which is not written back. Null: none.
[[nodiscard]] CFRef<CFDataRef> CopyFileLocationPreference(CFStringRef applicationID,
                                                          CFStringRef bookmarkKey,
                                                          CFStringRef legacyKey);
/// Stores a bookmark unless it is null. Does not synchronise.
void SetFileLocationPreference(CFStringRef applicationID, CFStringRef key, CFDataRef bookmark);

[[nodiscard]] CFRef<CFDataRef> CopyPPDFileLocation(CFStringRef applicationID);
/// Was one chosen, whether it is still there or not?
[[nodiscard]] bool HasSavedPPD(CFStringRef applicationID);
/// Where the file is now; null when none was chosen or its bookmark leads nowhere. A path as old
/// versions kept it is told also when nothing is there, so that a host can name what is missing.
[[nodiscard]] CFRef<CFURLRef> CopySavedPPD(CFStringRef applicationID);
void SavePPDFileLocation(CFStringRef applicationID, CFDataRef bookmark);
/// The saved value as it is, whatever its type, to be put back after a choice that was cancelled.
[[nodiscard]] CFRef<CFPropertyListRef> CopySavedPPDFile(CFStringRef applicationID);
void RestoreSavedPPDFile(CFStringRef applicationID, CFPropertyListRef value); ///< null: none

/// The hot folder that the print dialog saved last; null when there is none or it cannot be found.
[[nodiscard]] CFRef<CFURLRef> CopyFoundHotFolder(CFStringRef applicationID);
/// The same, as CopySavedPPD.
[[nodiscard]] CFRef<CFURLRef> CopySavedHotFolder(CFStringRef applicationID);
/// Saves the folder and synchronises.
void SaveHotFolder(CFStringRef applicationID, CFURLRef folder);

/// "MeasurementsUnit": 2, 3 or 4; 3 when missing or anything else. The page-setup dialog keeps a
/// setting of its own under "MeasurementUnit"; both spellings are in users' preferences.
[[nodiscard]] int32_t GetMeasurementUnits(CFStringRef applicationID);
void SaveMeasurementUnits(CFStringRef applicationID, int32_t units);

/// "MeasurementUnit": the unit in which the page-setup dialog shows sizes (a DialogUnit);
/// millimetres when missing or anything else.
[[nodiscard]] int GetDialogUnit(CFStringRef applicationID);
void SaveDialogUnit(CFStringRef applicationID, int unit);

/// "SendToDefaultPrintQueue", false when missing.
[[nodiscard]] bool GetSendToDefaultPrintQueue(CFStringRef applicationID);
void SaveSendToDefaultPrintQueue(CFStringRef applicationID, bool send);

/// Puts the user's saved page options and file format ("PageOptions", "FileFormat") into a new
/// record; what is not saved leaves its field as it is.
void ReadDefaults(CFStringRef applicationID, PSHPrint &record);
/// "PSColourSpace"; CMYK when missing or not a number.
[[nodiscard]] uint32_t GetColourSpace(CFStringRef applicationID);
/// Saves the record's page options, file format and colour space as the user's defaults.
void SaveDefaults(CFStringRef applicationID, const PSHPrint &record);
