#include <Foundation/Foundation.h>
#include <cstdarg>
#include <objc/runtime.h>

extern "C" __attribute__((visibility("default"))) void ZELPlatformEndWithoutMemory(void (*end)());

namespace {

void (*gEnd)() = nullptr;

/// In the place of +[NSException raise:format:].
void RaiseOrEnd(id exceptions, SEL /*selector*/, NSString *name, NSString *format, ...) {
    if ([name isEqual:NSMallocException]) gEnd();
    va_list arguments;
    va_start(arguments, format);
    [exceptions raise:name format:format arguments:arguments];
    va_end(arguments);
}

} // namespace

void ZELPlatformEndWithoutMemory(void (*end)()) {
    gEnd = end;
    const Method raise = class_getClassMethod([NSException class], @selector(raise:format:));
    (void)method_setImplementation(raise, reinterpret_cast<IMP>(RaiseOrEnd));
}
