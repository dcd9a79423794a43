/// Tables of separation profiles, made from their files.
#pragma once

#include "ZELColour.h"
#include "colour/EightColourTable.h"
#include <CoreFoundation/CoreFoundation.h>

/// Does the file begin with the profile signature? The file stays open: the descriptor belongs to
/// a keeper that closes it after a few more checks.
[[nodiscard]] bool IsEightColourLUT(CFURLRef url);

/// Loads a profile and samples it. Null when the file is no profile, is damaged, or memory is
/// short. When a profile passes the signature check but cannot be opened again, the table is zero
/// and separates everything to no ink; `*sampled`, if asked for, tells that it is not so.
[[nodiscard]] EightColourLUT *LoadEightColourLUT(CFURLRef url, bool *sampled = nullptr);

/// Frees a table.
void ReleaseEightColourLUT(EightColourLUT *table);
