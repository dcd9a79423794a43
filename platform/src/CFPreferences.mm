// Preferences: one persistent domain of NSUserDefaults, that is one file, for each application
// identifier.
#include "CFBridge.h"
#include "FileState.h"
#include <mutex>
#include <unistd.h>

namespace {

/// NSUserDefaults merges files and memory in several steps; one thread at a time.
std::recursive_mutex gLock;

/// The files whose content is in memory, with no change of ours that they lack.
FileStates gMerged;

/// The folder that holds the files.
NSString *Folder() { return GSDefaultsRootForUser(NSUserName()); }

/// NSUserDefaults reads nothing that it cannot lock, and it locks by a file of its own.
bool CanLock() {
    NSString *locks = [Folder() stringByAppendingPathComponent:@".lck"];
    return access([locks fileSystemRepresentation], W_OK) == 0;
}

NSString *File(NSString *application) {
    return [NSString stringWithFormat:@"%@/%@.plist", Folder(), application];
}

NSDictionary *DomainInFile(NSString *application) {
    return [NSDictionary dictionaryWithContentsOfFile:File(application)];
}

NSDictionary *Domain(NSString *application) {
    NSUserDefaults *defaults = [NSUserDefaults standardUserDefaults];
    NSDictionary *domain = [defaults persistentDomainForName:application];
    return domain == nil && !CanLock() ? DomainInFile(application) : domain;
}

/// `defaults write` stores what it is given without a type as a string.
bool IntegerFromString(NSString *string, CFIndex *result) {
    NSScanner *scanner = [NSScanner scannerWithString:string];
    long long value = 0;
    if (![scanner scanLongLong:&value] || ![scanner isAtEnd]) return false;
    *result = (CFIndex)value;
    return true;
}

bool BooleanFromString(NSString *string, Boolean *result) {
    NSString *word = [string lowercaseString];
    *result = [[NSArray arrayWithObjects:@"true", @"yes", @"1", nil] containsObject:word];
    return *result || [[NSArray arrayWithObjects:@"false", @"no", @"0", nil] containsObject:word];
}

bool IntegerFromValue(CFTypeRef value, CFIndex *result) {
    if (NSString *string = String(value)) return IntegerFromString(string, result);
    NSNumber *number = As<NSNumber>([NSNumber class], value);
    bool exact = false;
    const int64_t integer = IntegerValue(number, &exact);
    if (number == nil || !exact) return false;
    *result = integer;
    return true;
}

bool BooleanFromValue(CFTypeRef value, Boolean *result) {
    if (NSString *string = String(value)) return BooleanFromString(string, result);
    NSNumber *number = As<NSNumber>([NSNumber class], value);
    *result = [number boolValue] ? 1 : 0;
    return number != nil;
}

/// Reads a preference by `convert`; 0 when it is missing or not convertible.
template <class T>
T Value(CFStringRef key, CFStringRef application, Boolean *valid, bool (*convert)(CFTypeRef, T *)) {
    @autoreleasepool {
        CFPropertyListRef value = CFPreferencesCopyAppValue(key, application);
        T result = 0;
        const bool good = value && convert(value, &result);
        if (value) CFRelease(value);
        if (valid) *valid = good ? 1 : 0;
        return good ? result : 0;
    }
}

void SetValue(NSString *key, id value, NSString *application) {
    NSMutableDictionary *domain =
        [NSMutableDictionary dictionaryWithDictionary:Domain(application)];
    if (value)
        [domain setObject:value forKey:key];
    else
        [domain removeObjectForKey:key];
    [[NSUserDefaults standardUserDefaults] setPersistentDomain:domain forName:application];
    gMerged.Forget([File(application) fileSystemRepresentation]);
}

/// Merges the file and what is in memory.
bool Merge(NSString *application) {
    // On its own, synchronize re-reads the files only if their folder's date, in whole seconds, is
    // newer than the last time. A domain that has been set is merged in any case.
    NSDictionary *domain = Domain(application);
    NSUserDefaults *defaults = [NSUserDefaults standardUserDefaults];
    [defaults setPersistentDomain:domain ? domain : [NSDictionary dictionary] forName:application];
    return [defaults synchronize] && CanLock();
}

/// A process that gives back a lock which was taken from it for being old can remove the lock that
/// we have just made instead, and GNUstep raises then. Nothing has been merged yet.
bool MergePersistently(NSString *application) {
    for (int tries = 0; tries < 10; ++tries) {
        @try {
            return Merge(application);
        } @catch (NSException *exception) {
            NSDebugLog(@"preferences of %@ could not be locked: %@", application, exception);
        }
    }
    return Merge(application);
}

/// A merge locks, reads and parses the file twice, and a session asks for several: it is left out
/// when neither side has changed.
bool Synchronize(NSString *application) {
    const char *file = [File(application) fileSystemRepresentation];
    if (gMerged.IsUnchanged(file)) return CanLock();
    const FileStates::State state = FileStates::Look(file);
    if (!MergePersistently(application)) return false;
    gMerged.Remember(file, state);
    return true;
}

} // namespace

extern "C" {

CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef applicationID) {
    if (!String(key) || !String(applicationID)) return nullptr;
    std::lock_guard<std::recursive_mutex> guard(gLock);
    return Create([&] { return [Domain(String(applicationID)) objectForKey:String(key)]; });
}

void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value, CFStringRef applicationID) {
    if (!String(key) || !String(applicationID)) return;
    std::lock_guard<std::recursive_mutex> guard(gLock);
    @autoreleasepool {
        @try {
            if (!value || IsPropertyList(Object(value)))
                SetValue(String(key), Object(value), String(applicationID));
        } @catch (NSException *exception) {
            NSLog(@"preferences of %@ not changed: %@", applicationID, exception);
        }
    }
}

Boolean CFPreferencesAppSynchronize(CFStringRef applicationID) {
    if (!String(applicationID)) return 0;
    std::lock_guard<std::recursive_mutex> guard(gLock);
    @autoreleasepool {
        @try {
            return Synchronize(String(applicationID)) ? 1 : 0;
        } @catch (NSException *exception) {
            NSLog(@"preferences of %@ not written: %@", applicationID, exception);
            return 0;
        }
    }
}

CFIndex CFPreferencesGetAppIntegerValue(CFStringRef key, CFStringRef applicationID,
                                        Boolean *keyExistsAndHasValidFormat) {
    return Value<CFIndex>(key, applicationID, keyExistsAndHasValidFormat, IntegerFromValue);
}

Boolean CFPreferencesGetAppBooleanValue(CFStringRef key, CFStringRef applicationID,
                                        Boolean *keyExistsAndHasValidFormat) {
    return Value<Boolean>(key, applicationID, keyExistsAndHasValidFormat, BooleanFromValue);
}
}
