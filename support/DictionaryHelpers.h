/// Typed reading and writing of dictionaries.
///
/// A null dictionary, a missing key and a value of another type all read as the default. The Put
/// functions only add: a key that is present keeps its value.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

[[nodiscard]] bool GetBooleanFromDictionary(CFDictionaryRef dictionary, CFStringRef key,
                                            bool defaultValue);
/// Numbers that are not exactly a signed 32-bit integer within the limits read as the default.
[[nodiscard]] int32_t GetSInt32FromDictionaryWithChecking(CFDictionaryRef dictionary,
                                                          CFStringRef key, int32_t defaultValue,
                                                          int32_t minimum, int32_t maximum);
[[nodiscard]] double GetDoubleFromDictionaryWithChecking(CFDictionaryRef dictionary,
                                                         CFStringRef key, double defaultValue,
                                                         double minimum, double maximum);
/// Stores the default and then, if there is a string of at most 255 bytes of UTF-8, that one. Of a
/// default of length n, its length byte and its first n - 1 characters are stored, and of an empty
/// default nothing: `destination` then keeps what it holds. Old callers count on both.
void GetStr255FromDictionary(CFDictionaryRef dictionary, CFStringRef key,
                             ConstStr255Param defaultString, StringPtr destination);

void PutBooleanInDictionary(CFMutableDictionaryRef dictionary, CFStringRef key, bool flag);
void PutSInt32InDictionary(CFMutableDictionaryRef dictionary, CFStringRef key, int32_t value);
void PutDoubleInDictionary(CFMutableDictionaryRef dictionary, CFStringRef key, double value);
/// Adds nothing when the bytes are not UTF-8.
void PutStr255InDictionary(CFMutableDictionaryRef dictionary, CFStringRef key,
                           ConstStr255Param string);
