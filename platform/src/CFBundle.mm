// Bundles.
#include "CFBridge.h"
#include <dlfcn.h>

static NSBundle *Bundle(CFBundleRef bundle) { return As<NSBundle>([NSBundle class], bundle); }

/// The handle of the bundle's code, which stays loaded for good: the Objective-C runtime cannot
/// take classes back.
static void *LoadedCode(NSBundle *bundle) {
    if (![bundle load]) return nullptr;
    return dlopen([[bundle executablePath] UTF8String], RTLD_NOW | RTLD_NOLOAD);
}

extern "C" {

CFBundleRef CFBundleCreate(CFAllocatorRef, CFURLRef bundleURL) {
    if (!Url(bundleURL)) return nullptr;
    return (CFBundleRef)Create([&] { return [NSBundle bundleWithPath:[Url(bundleURL) path]]; });
}

CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef bundleID) {
    @autoreleasepool {
        return String(bundleID) ? (CFBundleRef)[NSBundle bundleWithIdentifier:String(bundleID)]
                                : nullptr;
    }
}

CFStringRef CFBundleGetIdentifier(CFBundleRef bundle) {
    @autoreleasepool {
        return (CFStringRef)[Bundle(bundle) bundleIdentifier];
    }
}

CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key) {
    @autoreleasepool {
        return key ? [[Bundle(bundle) infoDictionary] objectForKey:String(key)] : nil;
    }
}

CFURLRef CFBundleCopyBuiltInPlugInsURL(CFBundleRef bundle) {
    return (CFURLRef)Create([&]() -> NSURL * {
        NSString *path = [Bundle(bundle) builtInPlugInsPath];
        return path ? [NSURL fileURLWithPath:path isDirectory:YES] : nil;
    });
}

void *CFBundleGetFunctionPointerForName(CFBundleRef bundle, CFStringRef functionName) {
    @autoreleasepool {
        void *code = String(functionName) ? LoadedCode(Bundle(bundle)) : nullptr;
        if (!code) return nullptr;
        void *function = dlsym(code, [String(functionName) UTF8String]);
        dlclose(code); // takes back the count of LoadedCode; the bundle keeps its own
        return function;
    }
}
}
