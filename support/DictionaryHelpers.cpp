#include "support/DictionaryHelpers.h"

#include "support/CFRef.h"

#include <cstring>

namespace {

/// The value of a key if it has the given type, or null.
CFTypeRef ValueOfType(CFDictionaryRef dictionary, CFStringRef key, CFTypeID type) {
    const void *value = nullptr;
    if (!dictionary || !CFDictionaryGetValueIfPresent(dictionary, key, &value)) return nullptr;
    return CFGetTypeID(value) == type ? value : nullptr;
}

CFNumberRef NumberOf(CFDictionaryRef dictionary, CFStringRef key) {
    return static_cast<CFNumberRef>(ValueOfType(dictionary, key, CFNumberGetTypeID()));
}

void AddNumber(CFMutableDictionaryRef dictionary, CFStringRef key, CFNumberType type,
               const void *value) {
    CFRef<CFNumberRef> number(CFNumberCreate(kCFAllocatorDefault, type, value));
    if (number) CFDictionaryAddValue(dictionary, key, number.Get());
}

} // namespace

bool GetBooleanFromDictionary(CFDictionaryRef dictionary, CFStringRef key, bool defaultValue) {
    CFTypeRef value = ValueOfType(dictionary, key, CFBooleanGetTypeID());
    return value ? CFBooleanGetValue(static_cast<CFBooleanRef>(value)) != 0 : defaultValue;
}

int32_t GetSInt32FromDictionaryWithChecking(CFDictionaryRef dictionary, CFStringRef key,
                                            int32_t defaultValue, int32_t minimum,
                                            int32_t maximum) {
    CFNumberRef number = NumberOf(dictionary, key);
    int32_t value = 0;
    if (!number || !CFNumberGetValue(number, kCFNumberSInt32Type, &value)) return defaultValue;
    return minimum <= value && value <= maximum ? value : defaultValue;
}

double GetDoubleFromDictionaryWithChecking(CFDictionaryRef dictionary, CFStringRef key,
                                           double defaultValue, double minimum, double maximum) {
    CFNumberRef number = NumberOf(dictionary, key);
    double value = 0;
    if (!number || !CFNumberGetValue(number, kCFNumberDoubleType, &value)) return defaultValue;
    return minimum <= value && value <= maximum ? value : defaultValue;
}

void GetStr255FromDictionary(CFDictionaryRef dictionary, CFStringRef key,
                             ConstStr255Param defaultString, StringPtr destination) {
    // The length byte counts the bytes copied, itself included: one character fewer than it says.
    std::memmove(destination, defaultString, defaultString[0]);
    CFTypeRef value = ValueOfType(dictionary, key, CFStringGetTypeID());
    Str255 text;
    if (!value || !CFStringGetPascalString(static_cast<CFStringRef>(value), text, sizeof text,
                                           kCFStringEncodingUTF8))
        return;
    std::memcpy(destination, text, 1U + text[0]);
}

void PutBooleanInDictionary(CFMutableDictionaryRef dictionary, CFStringRef key, bool flag) {
    CFDictionaryAddValue(dictionary, key, flag ? kCFBooleanTrue : kCFBooleanFalse);
}

void PutSInt32InDictionary(CFMutableDictionaryRef dictionary, CFStringRef key, int32_t value) {
    AddNumber(dictionary, key, kCFNumberSInt32Type, &value);
}

void PutDoubleInDictionary(CFMutableDictionaryRef dictionary, CFStringRef key, double value) {
    AddNumber(dictionary, key, kCFNumberDoubleType, &value);
}

void PutStr255InDictionary(CFMutableDictionaryRef dictionary, CFStringRef key,
                           ConstStr255Param string) {
    CFRef<CFStringRef> text(
        CFStringCreateWithPascalString(kCFAllocatorDefault, string, kCFStringEncodingUTF8));
    if (text) CFDictionaryAddValue(dictionary, key, text.Get());
}
