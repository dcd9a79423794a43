// Reader of binary property lists, for bytes of any origin.
//
// GNUstep's own reader trusts them: it takes sizes, counts and depth as they stand (and a negative
// integer as a huge unsigned one). Its writer is used.
#pragma once
#include <CoreFoundation/CoreFoundation.h>

/// Does the data begin as a binary property list does?
bool IsBinaryPropertyList(const UInt8 *bytes, size_t length);

/// The property list, with mutable containers, owned by the caller; null when anything is wrong
/// with it: a size or reference out of range, containers nested too deeply (or within themselves),
/// too many objects, or an object that property lists cannot hold.
CFPropertyListRef CreateFromBinaryPropertyList(const UInt8 *bytes, size_t length);
