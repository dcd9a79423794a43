#import "platform/toolkit/gnustep/InterfaceFiles.h"

#import <Foundation/Foundation.h>
#include <objc/runtime.h>

/// GNUstep's own test, but for the document that it leaves.
static BOOL IsFromXcode5(Class self, SEL command, NSData *data) {
    NSXMLDocument *document = [[NSXMLDocument alloc] initWithData:data options:0 error:nullptr];
    const BOOL found = [[document nodesForXPath:@"/document" error:nullptr] count] != 0;
    [document release];
    return found;
}

void ForgetInterfaceFiles(void) {
    Class reader = objc_lookUpClass("GSXibKeyedUnarchiver");
    const SEL check = NSSelectorFromString(@"checkXib5:");
    Method own = reader != nil ? class_getClassMethod(reader, check) : nullptr;
    if (own != nullptr) method_setImplementation(own, (IMP)IsFromXcode5);
}
