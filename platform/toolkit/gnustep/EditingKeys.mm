#import "platform/toolkit/gnustep/EditingKeys.h"

#import <AppKit/AppKit.h>
#include <objc/runtime.h>

@protocol ZELKeyBindings
- (void)loadBindingsFromDictionary:(NSDictionary *)bindings;
@end

static NSDictionary *EditingKeys() {
    return [NSDictionary
        dictionaryWithObjectsAndKeys:@"selectAll:", @"Control-a", @"copy:", @"Control-c",
                                     @"paste:", @"Control-v", @"cut:", @"Control-x",
                                     @"copy:", @"Control-Insert", @"paste:", @"Shift-Insert",
                                     @"cut:", @"Shift-Delete",
                                     @"moveWordLeft:", @"Control-LeftArrow",
                                     @"moveWordRight:", @"Control-RightArrow", nil];
}

void UseEditingKeys(void) {
    NSInputManager *manager = [NSInputManager currentInputManager];
    // AppKit reads them from files alone; the table is its own.
    Ivar table = class_getInstanceVariable([manager class], "_rootBindingTable");
    const id<ZELKeyBindings> keys = table != nullptr ? object_getIvar(manager, table) : nil;
    if ([(id)keys respondsToSelector:@selector(loadBindingsFromDictionary:)])
        [keys loadBindingsFromDictionary:EditingKeys()];
}
