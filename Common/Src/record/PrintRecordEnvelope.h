/// A host's handle that holds a prefix of fixed bytes and, after it, a binary property list to the
/// handle's end.
#pragma once

#include "support/CFRef.h"
#include <CoreServices/CoreServices.h>

/// Fills the handle; false, with the handle as it was, when the list cannot be serialised or memory
/// is short.
bool EncodeHPrint(Handle handle, CFDataRef prefix, CFPropertyListRef list);

/// The property list with mutable containers; null when the handle does not begin with exactly the
/// prefix or what follows is no property list.
[[nodiscard]] CFRef<CFPropertyListRef> DecodeHPrint(CFDataRef prefix, Handle handle);
