/// The fonts that texts are shown in.
#pragma once

#import <AppKit/AppKit.h>

/// Gives the application the desktop's font, at AppKit's sizes, for which the windows are laid out.
/// When the application has started, before it has windows; a font that the user has set in
/// AppKit's own way comes first.
void UseSystemFont(void);

/// The font, or where it lacks the character, one of the system's that has it, in its size. AppKit
/// draws a question mark instead.
NSFont *FontWith(unichar character, NSFont *font);
