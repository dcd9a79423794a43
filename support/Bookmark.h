/// Bookmarks: how files and folders are remembered so that they are found again when they have been
/// renamed or moved.
#pragma once

#include "support/CFRef.h"

/// A bookmark of a file or folder; null when there is nothing.
[[nodiscard]] CFRef<CFDataRef> BookmarkOf(CFURLRef item);

/// Where the item of a bookmark is now; null for null and when it cannot be found.
[[nodiscard]] CFRef<CFURLRef> ResolvedBookmark(CFDataRef bookmark);
