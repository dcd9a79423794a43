// Preferences: one file for each application identifier, where and as GNUstep's own tool keeps
// them.
//
// NSUserDefaults is not asked: it reads under a lock that it waits for, for minutes on a full disk,
// and tells nobody when it could not write. Files are replaced in one step here, so reading needs
// no lock.
#include "BinaryPropertyList.h"
#include "CFBridge.h"
#include "FileState.h"
#include "PreferencesLock.h"
#include "WholeFile.h"
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>
#include <mutex>

namespace {

std::recursive_mutex gLock;

/// The files whose content is in memory.
FileStates gRead;

/// The preferences of one application.
struct Domain {
    NSDictionary *file = nil;           ///< as read last; nil: not yet
    NSMutableDictionary *changes = nil; ///< what the file lacks: values, and NSNull for none
};

NSString *Folder() { return GSDefaultsRootForUser(NSUserName()); }

std::string FolderPath() { return [Folder() fileSystemRepresentation]; }

std::string File(NSString *application) {
    NSString *name = [application stringByAppendingString:@".plist"];
    return [[Folder() stringByAppendingPathComponent:name] fileSystemRepresentation];
}

/// The list in a file written by hand, in the form of braces that GNUstep reads as well.
id OldStyleList(NSData *data) {
    return [NSPropertyListSerialization propertyListWithData:data
                                                     options:NSPropertyListImmutable
                                                      format:NULL
                                                       error:NULL];
}

/// What a file holds; nothing when that is no preferences.
NSDictionary *Parse(const std::string &bytes) {
    NSData *data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
    const size_t start = bytes.find_first_not_of(" \t\r\n");
    const bool isOldStyle = start != std::string::npos && bytes[start] == '{';
    id list = nil;
    @try {
        list = isOldStyle ? OldStyleList(data)
                          : [Object(CFPropertyListCreateWithData(nullptr, (CFDataRef)data, 0,
                                                                 nullptr, nullptr)) autorelease];
    } @catch (NSException *exception) {
        list = nil;
    }
    return [list isKindOfClass:[NSDictionary class]] ? list : [NSDictionary dictionary];
}

/// Reads the file unless it is known. 0 or an errno value: what is known stays.
int Read(NSString *application, Domain &domain) {
    const std::string file = File(application);
    if (domain.file && gRead.IsUnchanged(file)) return 0;
    const FileStates::State state = FileStates::Look(file);
    std::string bytes;
    const int code = ReadWholeFile(file, bytes);
    if (code != 0 && code != ENOENT) return code;
    NSDictionary *list = Parse(bytes);
    [domain.file release];
    domain.file = [list retain];
    gRead.Remember(file, state);
    return 0;
}

Domain &DomainOf(NSString *application) {
    // Never freed: others may ask to the very end.
    static auto *domains = new std::map<std::string, Domain>;
    Domain &domain = (*domains)[[application UTF8String]];
    if (!domain.changes) domain.changes = [NSMutableDictionary new];
    if (!domain.file) (void)Read(application, domain);
    return domain;
}

id Value(NSString *key, const Domain &domain) {
    id changed = [domain.changes objectForKey:key];
    if (changed) return changed == [NSNull null] ? nil : changed;
    return [domain.file objectForKey:key];
}

NSDictionary *Merged(const Domain &domain) {
    NSMutableDictionary *merged = [NSMutableDictionary dictionaryWithDictionary:domain.file];
    for (NSString *key in domain.changes) {
        id value = [domain.changes objectForKey:key];
        if (value == [NSNull null])
            [merged removeObjectForKey:key];
        else
            [merged setObject:value forKey:key];
    }
    return merged;
}

int MakeFolder() {
    const BOOL made = [[NSFileManager defaultManager] createDirectoryAtPath:Folder()
                                                withIntermediateDirectories:YES
                                                                 attributes:nil
                                                                      error:NULL];
    return made ? 0 : errno ? errno : EIO;
}

int Replace(NSString *application, Domain &domain) {
    NSDictionary *merged = Merged(domain);
    NSData *data = [NSPropertyListSerialization dataWithPropertyList:merged
                                                              format:NSPropertyListXMLFormat_v1_0
                                                             options:0
                                                               error:NULL];
    if (!data) return EINVAL;
    const int code = ReplaceWholeFile(
        File(application), std::string(static_cast<const char *>([data bytes]), [data length]));
    if (code != 0) return code;
    [domain.changes removeAllObjects];
    [domain.file release];
    domain.file = [merged retain];
    gRead.Forget(File(application));
    return 0;
}

/// Who is told over and over stops reading.
void SayOnce(const std::string &text) {
    static bool said = false;
    if (!said) (void)fprintf(stderr, "%s\n", text.c_str());
    said = true;
}

/// Merges the changes into the file, whose other values may be newer than those in memory.
int Write(NSString *application, Domain &domain) {
    if (const int code = MakeFolder()) return code;
    const PreferencesLock lock(FolderPath());
    if (lock.IsRefused()) return EBUSY;
    if (const int code = Read(application, domain)) return code;
    const int code = Replace(application, domain);
    if (code == 0 && lock.IsDoubtful())
        SayOnce(File(application) + ": saved without its lock, which another process keeps in " +
                FolderPath() + "/.lck");
    return code;
}

bool Synchronize(NSString *application) {
    Domain &domain = DomainOf(application);
    const bool hasChanges = [domain.changes count] > 0;
    const int code = hasChanges ? Write(application, domain) : Read(application, domain);
    if (code != 0 && hasChanges)
        SayOnce(File(application) + ": the settings cannot be saved: " + strerror(code));
    return code == 0;
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
T Converted(CFStringRef key, CFStringRef application, Boolean *valid,
            bool (*convert)(CFTypeRef, T *)) {
    @autoreleasepool {
        CFPropertyListRef value = CFPreferencesCopyAppValue(key, application);
        T result = 0;
        const bool good = value && convert(value, &result);
        if (value) CFRelease(value);
        if (valid) *valid = good ? 1 : 0;
        return good ? result : 0;
    }
}

} // namespace

extern "C" {

CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef applicationID) {
    if (!String(key) || !String(applicationID)) return nullptr;
    std::lock_guard<std::recursive_mutex> guard(gLock);
    return Create([&] { return Value(String(key), DomainOf(String(applicationID))); });
}

void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value, CFStringRef applicationID) {
    if (!String(key) || !String(applicationID)) return;
    std::lock_guard<std::recursive_mutex> guard(gLock);
    @autoreleasepool {
        if (value && !IsPropertyList(Object(value))) return;
        id stored = value ? Object(value) : [NSNull null];
        [DomainOf(String(applicationID)).changes setObject:stored forKey:String(key)];
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
    return Converted<CFIndex>(key, applicationID, keyExistsAndHasValidFormat, IntegerFromValue);
}

Boolean CFPreferencesGetAppBooleanValue(CFStringRef key, CFStringRef applicationID,
                                        Boolean *keyExistsAndHasValidFormat) {
    return Converted<Boolean>(key, applicationID, keyExistsAndHasValidFormat, BooleanFromValue);
}
}
