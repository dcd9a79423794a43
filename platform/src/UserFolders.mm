// Where the user's files are.
#import <Foundation/Foundation.h>
#include <platform/Platform.h>

std::string PlatformApplicationSupportFolder() {
    @autoreleasepool {
        NSURL *url = [[NSFileManager defaultManager] URLForDirectory:NSApplicationSupportDirectory
                                                            inDomain:NSUserDomainMask
                                                   appropriateForURL:nil
                                                              create:NO
                                                               error:NULL];
        const char *path = [[url path] UTF8String];
        return path != nullptr ? path : "";
    }
}
