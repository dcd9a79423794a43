#import "platform/toolkit/gnustep/ThemeColours.h"

NSColor *ThemeGrey(CGFloat white) { return [NSColor colorWithCalibratedWhite:white alpha:1]; }

NSColor *ThemeAccent(void) { return [NSColor selectedMenuItemColor]; }

void RegisterThemeColours(void) {
    struct Colour {
        NSString *name, *value;
    };
    const Colour colours[] = {{@"windowBackgroundColor", @"0.96 0.96 0.96"},
                              {@"controlBackgroundColor", @"0.96 0.96 0.96"},
                              {@"controlColor", @"0.96 0.96 0.96"},
                              {@"controlHighlightColor", @"0.96 0.96 0.96"},
                              {@"controlLightHighlightColor", @"1 1 1"},
                              {@"controlShadowColor", @"0.74 0.74 0.74"},
                              {@"controlDarkShadowColor", @"0.74 0.74 0.74"},
                              {@"controlTextColor", @"0.11 0.11 0.11"},
                              {@"textColor", @"0.11 0.11 0.11"},
                              {@"disabledControlTextColor", @"0.6 0.6 0.6"},
                              {@"scrollBarColor", @"0.9 0.9 0.9"},
                              {@"knobColor", @"0.75 0.75 0.75"},
                              {@"selectedMenuItemColor", @"0.13 0.44 0.85"},
                              {@"selectedMenuItemTextColor", @"1 1 1"},
                              {@"selectedTextBackgroundColor", @"0.7 0.82 0.98"},
                              {@"selectedControlColor", @"0.7 0.82 0.98"}};
    NSMutableDictionary *defaults = [NSMutableDictionary dictionary];
    for (const Colour &colour : colours)
        [defaults setObject:colour.value forKey:colour.name];
    [defaults setObject:@"NSMacintoshInterfaceStyle" // on the right
                 forKey:@"NSScrollViewInterfaceStyle"];
    [[NSUserDefaults standardUserDefaults] registerDefaults:defaults];
}
