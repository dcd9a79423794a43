// Bundles (NSBundle).
#ifndef CF_BUNDLE_H
#define CF_BUNDLE_H

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

CF_EXPORT const CFStringRef kCFBundleNameKey;

/// Null when there is no folder at `bundleURL`.
CF_EXPORT CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef bundleURL);
/// A bundle that has been created in this process; null when there is none. Not retained.
CF_EXPORT CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef bundleID);
CF_EXPORT CFStringRef CFBundleGetIdentifier(CFBundleRef bundle);
CF_EXPORT CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key);
/// The folder of the bundle's own plug-ins, which need not exist.
CF_EXPORT CFURLRef CFBundleCopyBuiltInPlugInsURL(CFBundleRef bundle);
/// Loads the bundle's code if need be. Null when it cannot be loaded or has no such function.
CF_EXPORT void *CFBundleGetFunctionPointerForName(CFBundleRef bundle, CFStringRef functionName);

CF_EXTERN_C_END

#endif
