// Per-user preferences by application identifier (the same store as the `defaults` tool's).
#ifndef CF_PREFERENCES_H
#define CF_PREFERENCES_H

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

CF_EXPORT CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef applicationID);
/// Both: numbers, booleans, and strings that say one; anything else is 0 and not valid.
CF_EXPORT Boolean CFPreferencesGetAppBooleanValue(CFStringRef key, CFStringRef applicationID,
                                                  Boolean *keyExistsAndHasValidFormat);
CF_EXPORT CFIndex CFPreferencesGetAppIntegerValue(CFStringRef key, CFStringRef applicationID,
                                                  Boolean *keyExistsAndHasValidFormat);
/// Changes the value (null: removes the key) in memory; CFPreferencesAppSynchronize writes it.
CF_EXPORT void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value,
                                        CFStringRef applicationID);
/// Writes own changes and reads those of other processes. False when the file cannot be written.
CF_EXPORT Boolean CFPreferencesAppSynchronize(CFStringRef applicationID);

CF_EXTERN_C_END

#endif
