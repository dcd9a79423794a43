#import <Foundation/Foundation.h>
#include <platform/Platform.h>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

std::string PlatformDecimalSeparator() {
  @autoreleasepool {
    NSString *s = [[NSLocale currentLocale] objectForKey:NSLocaleDecimalSeparator];
    return [s length] ? std::string([s UTF8String]) : std::string(".");
  }
}
std::string PlatformFormatNumber(double value, int decimals) {
  @autoreleasepool {
    // Not the 10.0 behaviour: its "0.00" format is broken in GNUstep ("01." for 1).
    NSNumberFormatter *f = [[[NSNumberFormatter alloc] init] autorelease];
    NSUInteger n = (NSUInteger)(decimals < 0 ? 0 : decimals > 20 ? 20 : decimals);
    [f setFormatterBehavior:NSNumberFormatterBehavior10_4];
    [f setNumberStyle:NSNumberFormatterDecimalStyle];
    [f setUsesGroupingSeparator:NO];
    [f setMinimumIntegerDigits:1];
    [f setMinimumFractionDigits:n];
    [f setMaximumFractionDigits:n];
    return [[f stringFromNumber:[NSNumber numberWithDouble:value]] UTF8String];
  }
}
bool PlatformScanNumber(const std::string &text, double &value) {
  @autoreleasepool {
    // GNUstep's localized scanner takes the separator from the "NSDecimalSeparator" default, which can
    // differ from NSLocale's: make the separator a point and scan without a locale.
    NSString *s = [NSString stringWithUTF8String:text.c_str()];
    NSString *sep = [NSString stringWithUTF8String:PlatformDecimalSeparator().c_str()];
    if (s == nil) return false;
    if (![sep isEqual:@"."]) {
      if ([s rangeOfString:@"."].length != 0) return false;
      s = [s stringByReplacingOccurrencesOfString:sep withString:@"."];
    }
    NSScanner *scan = [NSScanner scannerWithString:s];
    [scan setLocale:[NSDictionary dictionaryWithObject:@"." forKey:NSDecimalSeparator]];
    double d = 0;
    if (![scan scanDouble:&d] || ![scan isAtEnd]) return false;
    value = d;
    return true;
  }
}
bool PlatformIsInTrash(const std::string &path) {
  char real[PATH_MAX];
  if (!realpath(path.c_str(), real)) return false;
  std::string p = real;
  auto inside = [&](const std::string &dir) {
    char d[PATH_MAX];
    if (!realpath(dir.c_str(), d)) return false;
    std::string r = d;
    return p == r || p.compare(0, r.size() + 1, r + "/") == 0;
  };
  const char *x = getenv("XDG_DATA_HOME"), *h = getenv("HOME");
  if (x && *x == '/' ? inside(std::string(x) + "/Trash") : h && inside(std::string(h) + "/.local/share/Trash")) return true;
  // Other volumes: TOP/.Trash/UID and TOP/.Trash-UID (freedesktop.org trash specification).
  char own[64];
  snprintf(own, sizeof own, "/.Trash-%u", (unsigned)getuid());
  char shared[64];
  snprintf(shared, sizeof shared, "/.Trash/%u", (unsigned)getuid());
  for (std::string mark : {std::string(own), std::string(shared)}) {
    size_t at = p.find(mark);
    if (at != std::string::npos && (at + mark.size() == p.size() || p[at + mark.size()] == '/')) return true;
  }
  return false;
}

void PlatformDisableFileCache(int fd) {
    // Output is written once and not read back. Linux has no F_NOCACHE; this is its nearest hint.
    (void)posix_fadvise(fd, 0, 0, POSIX_FADV_NOREUSE);
}

int PlatformRunTask(const char *program, const char *const *arguments, int count) {
    @autoreleasepool {
        @try {
            NSMutableArray *list = [NSMutableArray array];
            for (int i = 0; i < count; ++i) [list addObject:[NSString stringWithUTF8String:arguments[i]]];
            NSTask *task = [[[NSTask alloc] init] autorelease];
            [task setLaunchPath:[NSString stringWithUTF8String:program]];
            [task setArguments:list];
            [task launch];
            [task waitUntilExit];
            return [task terminationStatus];
        } @catch (NSException *e) {
            (void)e;
            return 1;
        }
    }
}

std::string PlatformApplicationSupportFolder() {
    @autoreleasepool {
        NSURL *url = [[NSFileManager defaultManager] URLForDirectory:NSApplicationSupportDirectory
                                                            inDomain:NSUserDomainMask
                                                   appropriateForURL:nil
                                                              create:NO
                                                               error:NULL];
        const char *path = [[url path] UTF8String];
        return path ? path : "";
    }
}
