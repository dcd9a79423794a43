#include "support/Bookmark.h"

CFRef<CFDataRef> BookmarkOf(CFURLRef item) {
    if (!item) return {};
    return CFRef<CFDataRef>(CFURLCreateBookmarkData(kCFAllocatorDefault, item,
                                                    kCFURLBookmarkCreationSuitableForBookmarkFile,
                                                    nullptr, nullptr, nullptr));
}

CFRef<CFURLRef> ResolvedBookmark(CFDataRef bookmark) {
    if (!bookmark) return {};
    return CFRef<CFURLRef>(CFURLCreateByResolvingBookmarkData(kCFAllocatorDefault, bookmark,
                                                              kCFURLBookmarkResolutionWithoutUIMask,
                                                              nullptr, nullptr, nullptr, nullptr));
}
