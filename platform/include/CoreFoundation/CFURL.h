// File URLs (NSURL) and bookmarks. Paths are UTF-8; a path that is not has no URL.
#ifndef CF_URL_H
#define CF_URL_H

#include <CoreFoundation/CFBase.h>

typedef CFIndex CFURLPathStyle;
enum { kCFURLPOSIXPathStyle = 0 };
typedef CFOptionFlags CFURLBookmarkCreationOptions;
enum { kCFURLBookmarkCreationSuitableForBookmarkFile = 1UL << 10 };
typedef CFOptionFlags CFURLBookmarkResolutionOptions;
enum { kCFURLBookmarkResolutionWithoutUIMask = 1UL << 8 };

CF_EXTERN_C_BEGIN

/// Null for an empty path. A relative path is taken from the current folder.
CF_EXPORT CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef filePath,
                                                 CFURLPathStyle pathStyle, Boolean isDirectory);
CF_EXPORT CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator,
                                                           const UInt8 *buffer, CFIndex bufLen,
                                                           Boolean isDirectory);

/// The item of that name in the folder `url`.
CF_EXPORT CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator, CFURLRef url,
                                                         CFStringRef pathComponent,
                                                         Boolean isDirectory);

CF_EXPORT CFStringRef CFURLCopyFileSystemPath(CFURLRef anURL, CFURLPathStyle pathStyle);
/// The path with its terminator; false when it does not fit.
CF_EXPORT Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase,
                                                   UInt8 *buffer, CFIndex maxBufLen);
CF_EXPORT CFStringRef CFURLCopyLastPathComponent(CFURLRef url);

/// Remembers an existing file or folder so that it is found again after being renamed or moved;
/// docs/platform.md says how far. Null when it does not exist. `*error` is always set to null.
CF_EXPORT CFDataRef CFURLCreateBookmarkData(CFAllocatorRef allocator, CFURLRef url,
                                            CFURLBookmarkCreationOptions options,
                                            CFArrayRef resourcePropertiesToInclude,
                                            CFURLRef relativeToURL, CFErrorRef *error);
/// Where the item is now; null when it is not found. `*isStale` tells that the bookmark should be
/// made anew, since the item has moved or another one has taken its place.
CF_EXPORT CFURLRef CFURLCreateByResolvingBookmarkData(CFAllocatorRef allocator, CFDataRef bookmark,
                                                      CFURLBookmarkResolutionOptions options,
                                                      CFURLRef relativeToURL,
                                                      CFArrayRef resourcePropertiesToInclude,
                                                      Boolean *isStale, CFErrorRef *error);
/// Always null: alias records exist on macOS only.
CF_EXPORT CFDataRef CFURLCreateBookmarkDataFromAliasRecord(CFAllocatorRef allocatorRef,
                                                           CFDataRef aliasRecordDataRef);

CF_EXTERN_C_END

#endif
