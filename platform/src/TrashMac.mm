// The trash as macOS knows it.
#import <Foundation/Foundation.h>
#include <platform/Platform.h>

bool PlatformIsInTrash(const std::string &path) {
    @autoreleasepool {
        NSURL *url = [NSURL fileURLWithPath:[NSString stringWithUTF8String:path.c_str()]];
        NSURLRelationship relationship = NSURLRelationshipOther;
        const BOOL known = [[NSFileManager defaultManager] getRelationship:&relationship
                                                               ofDirectory:NSTrashDirectory
                                                                  inDomain:NSUserDomainMask
                                                               toItemAtURL:url
                                                                     error:NULL];
        return known && relationship == NSURLRelationshipContains;
    }
}
