#import "platform/toolkit/gnustep/FittedText.h"

#import "platform/toolkit/gnustep/ThemeFont.h"

#include <cmath>

NSAttributedString *WithGlyphs(NSString *text, NSDictionary *attributes) {
    NSFont *font = [attributes objectForKey:NSFontAttributeName];
    NSMutableAttributedString *string =
        [[[NSMutableAttributedString alloc] initWithString:text attributes:attributes] autorelease];
    for (NSUInteger i = 0; i < [text length]; ++i) {
        NSFont *other = FontWith([text characterAtIndex:i], font);
        if (other != font)
            [string addAttribute:NSFontAttributeName value:other range:NSMakeRange(i, 1)];
    }
    return string;
}

static NSString *Shortened(NSString *text, NSUInteger length) {
    return [[text substringToIndex:length] stringByAppendingString:@"\u2026"];
}

/// The longest beginning of the text that fits with its ellipsis.
static NSString *Fitted(NSString *text, NSDictionary *attributes, CGFloat width) {
    if ([text sizeWithAttributes:attributes].width <= width) return text;
    NSUInteger fits = 0, tooLong = [text length];
    while (fits + 1 < tooLong) {
        const NSUInteger middle = (fits + tooLong) / 2;
        if ([Shortened(text, middle) sizeWithAttributes:attributes].width <= width)
            fits = middle;
        else
            tooLong = middle;
    }
    return Shortened(text, fits);
}

void DrawFittedText(NSString *text, NSRect frame, NSFont *font, NSColor *colour,
                    NSTextAlignment alignment) {
    if ([text length] == 0) return;
    NSDictionary *attributes =
        [NSDictionary dictionaryWithObjectsAndKeys:font, NSFontAttributeName, colour,
                                                   NSForegroundColorAttributeName, nil];
    NSAttributedString *fitted = WithGlyphs(Fitted(text, attributes, NSWidth(frame)), attributes);
    const NSSize size = [fitted size];
    const CGFloat spare = NSWidth(frame) - size.width;
    const CGFloat left = alignment == NSCenterTextAlignment  ? spare / 2
                         : alignment == NSRightTextAlignment ? spare
                                                             : 0;
    [fitted drawAtPoint:NSMakePoint(std::floor(NSMinX(frame) + left),
                                    std::floor(NSMidY(frame) - size.height / 2))];
}
