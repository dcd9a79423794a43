/// The print record in the host's handle: access, validity and defaults. include/PSHPrint.h has the
/// layout.
#pragma once

#include "PSHPrint.h"
#include "ZELOutput.h"
#include "support/BigEndian.h"
#include <CoreServices/CoreServices.h>

#include <string>

class PostscriptPrinterInfo;

/// Keeps a handle locked while a record in it is worked on.
class RecordLock {
public:
    explicit RecordLock(Handle handle) : mHandle(handle) { HLock(handle); }
    RecordLock(const RecordLock &) = delete;
    RecordLock &operator=(const RecordLock &) = delete;
    ~RecordLock() { HUnlock(mHandle); }
    /// The record, or null when the handle is null or shorter than one.
    PSHPrint *Record() const;

private:
    Handle mHandle;
};

/// A copy of the record in a handle; what a short handle lacks is zero.
[[nodiscard]] PSHPrint CopyRecord(Handle handle);

/// A name field's text; a field without terminator is taken to its end.
[[nodiscard]] std::string RecordName(const char (&field)[41]);
/// Stores at most 40 bytes and fills the rest of the field with zeros.
void SetRecordName(char (&field)[41], const std::string &name);

/// Page size in device pixels (truncated toward zero, limited to 32 bits, 0 for NaN) and in
/// millimetres.
[[nodiscard]] OutputGeometry RecordGeometry(const PSHPrint &record);

/// Does it begin as every record does?
[[nodiscard]] bool HasMagic(const PSHPrint &record);

/// Why the record must not be used as it stands with that printer: kZELFileNotFound for want of its
/// separation, kZELBadParameter for anything else, or 0.
[[nodiscard]] int32_t RecordProblem(const PostscriptPrinterInfo &printer, const PSHPrint &record);

/// True when the record must not be used as it stands with that printer.
[[nodiscard]] bool HPrintIsBad(const PostscriptPrinterInfo &printer, Handle handle);

/// Rewrites the record from the printer's defaults and the user's preferences, and cuts or grows
/// the handle to 416 bytes.
void SetDefaults(const PostscriptPrinterInfo &printer, CFStringRef applicationID, Handle handle);
