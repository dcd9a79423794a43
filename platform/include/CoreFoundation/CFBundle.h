// Bundles (NSBundle).
#ifndef CF_BUNDLE_H
#define CF_BUNDLE_H

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

CF_EXPORT const CFStringRef kCFBundleNameKey;

/// Null when there is no folder at `bundleURL`.
CF_EXPORT CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef bundleURL);
CF_EXPORT CFStringRef CFBundleGetIdentifier(CFBundleRef bundle);
CF_EXPORT CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key);
/// Loads the bundle's code if need be. Null when it cannot be loaded or has no such function.
CF_EXPORT void *CFBundleGetFunctionPointerForName(CFBundleRef bundle, CFStringRef functionName);

CF_EXTERN_C_END

#endif
