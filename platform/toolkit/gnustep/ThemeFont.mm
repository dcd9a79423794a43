#import "platform/toolkit/gnustep/ThemeFont.h"

#include "platform/toolkit/gnustep/DesktopSettings.h"
#include "platform/toolkit/gnustep/SystemFont.h"

#include <map>

static NSString *NameOf(const std::string &font) {
    return [NSString stringWithUTF8String:font.c_str()];
}

/// By AppKit's names for what a font is for.
static NSDictionary *DefaultsOf(const SystemFont &font) {
    NSArray *plain =
        [NSArray arrayWithObjects:@"NSFont", @"NSUserFont", @"NSControlContentFont", @"NSLabelFont",
                                  @"NSMenuFont", @"NSMessageFont", @"NSToolTipsFont", nil];
    NSMutableDictionary *defaults = [NSMutableDictionary dictionary];
    for (NSString *key in plain)
        [defaults setObject:NameOf(font.plain) forKey:key];
    [defaults setObject:NameOf(font.bold) forKey:@"NSBoldFont"];
    return defaults;
}

/// Fonts that AppKit has found on the system.
static bool IsKnown(const std::string &font) {
    static NSSet *const known =
        [[NSSet alloc] initWithArray:[[NSFontManager sharedFontManager] availableFonts]];
    return [known containsObject:NameOf(font)] != NO;
}

void UseSystemFont(void) {
    const SystemFont font = FindSystemFont(DesktopTextSetting("Gtk/FontName"), IsKnown);
    if (!font.plain.empty())
        [[NSUserDefaults standardUserDefaults] registerDefaults:DefaultsOf(font)];
}

/// Looked for once: it takes as long as a click may take.
static const std::string &NameOfFontWith(unichar character) {
    static std::map<unichar, std::string> found;
    const auto entry = found.find(character);
    if (entry != found.end()) return entry->second;
    return found[character] = FindFontWith(character, IsKnown);
}

NSFont *FontWith(unichar character, NSFont *font) {
    if (character < 0x80 || [[font coveredCharacterSet] characterIsMember:character]) return font;
    const std::string &name = NameOfFontWith(character);
    NSFont *other = name.empty() ? nil : [NSFont fontWithName:NameOf(name) size:[font pointSize]];
    return other != nil ? other : font;
}
