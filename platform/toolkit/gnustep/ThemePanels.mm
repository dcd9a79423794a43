#import "platform/toolkit/gnustep/ThemePanels.h"

#import "platform/toolkit/gnustep/Theme.h"

#include <algorithm>

static void HideOldParts(NSView *view) {
    for (NSView *sub in [view subviews]) {
        const NSInteger tag = [sub tag];
        const BOOL isButton = [sub isKindOfClass:[NSButton class]];
        if ([sub isKindOfClass:[NSImageView class]] || [sub isKindOfClass:[NSBox class]] ||
            tag == NSFileHandlingPanelTitleField ||
            (isButton &&
             (tag == NSFileHandlingPanelDiskButton || tag == NSFileHandlingPanelDiskEjectButton)))
            [sub setHidden:YES];
        if (isButton && tag == NSFileHandlingPanelHomeButton) {
            [(NSButton *)sub setImagePosition:NSNoImage];
            [(NSButton *)sub setTitle:@"\u2302"]; // a house
        }
        HideOldParts(sub);
    }
}

static NSBrowser *BrowserIn(NSView *view) {
    for (NSView *sub in [view subviews]) {
        NSBrowser *browser =
            [sub isKindOfClass:[NSBrowser class]] ? (NSBrowser *)sub : BrowserIn(sub);
        if (browser != nil) return browser;
    }
    return nil;
}

/// Wide enough for their titles in any language.
static void WidenButtons(NSView *view) {
    constexpr CGFloat kWidth = 104, kGap = 10;
    const CGFloat right = NSMaxX([view bounds]) - 8;
    for (NSView *sub in [view subviews]) {
        if ([sub isKindOfClass:[NSButton class]]) {
            const NSInteger tag = [sub tag];
            NSRect frame = [sub frame];
            if (tag == NSFileHandlingPanelOKButton)
                frame = NSMakeRect(right - kWidth, NSMinY(frame), kWidth, NSHeight(frame));
            if (tag == NSFileHandlingPanelCancelButton)
                frame =
                    NSMakeRect(right - 2 * kWidth - kGap, NSMinY(frame), kWidth, NSHeight(frame));
            if (tag == NSFileHandlingPanelHomeButton) frame.origin.x = 8;
            [sub setFrame:frame];
        }
        WidenButtons(sub);
    }
}

/// AppKit's panels are made with a font of their own.
static void UseSystemFonts(NSView *view) {
    for (NSView *sub in [view subviews]) {
        if ([sub isKindOfClass:[NSControl class]]) {
            NSFont *font = [NSFont systemFontOfSize:[[(NSControl *)sub font] pointSize]];
            [(NSControl *)sub setFont:font];
            if ([sub isKindOfClass:[NSForm class]]) [(NSForm *)sub setTitleFont:font];
        }
        UseSystemFonts(sub);
    }
}

void UseThemePanel(NSSavePanel *panel) {
    if (!IsThemeInUse()) return;
    UseSystemFonts([panel contentView]);
    const NSSize least = NSMakeSize(600, 420), now = [[panel contentView] bounds].size;
    if (now.width < least.width || now.height < least.height)
        [panel setContentSize:NSMakeSize(std::max(now.width, least.width),
                                         std::max(now.height, least.height))];
    HideOldParts([panel contentView]);
    NSBrowser *browser = BrowserIn([panel contentView]);
    const NSRect room = [[browser superview] bounds];
    [browser setFrame:NSMakeRect(NSMinX(room) + 8, NSMinY(room) + 4, NSWidth(room) - 16,
                                 NSHeight(room) - 12)];
    WidenButtons([panel contentView]);
    UseThemeButtons([panel contentView]);
}
