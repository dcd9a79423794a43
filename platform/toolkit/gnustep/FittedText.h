/// One line of text in a control, which GNUstep would cut off at the edge.
#pragma once

#import <AppKit/AppKit.h>

/// Draws it in the middle of the frame's height; a text that is too wide ends in an ellipsis.
void DrawFittedText(NSString *text, NSRect frame, NSFont *font, NSColor *colour,
                    NSTextAlignment alignment);

/// The text with these attributes, and with other fonts for the characters that their font lacks.
NSAttributedString *WithGlyphs(NSString *text, NSDictionary *attributes);
