/// A picture of the page as it will come out of the printer.
#pragma once

#import <AppKit/AppKit.h>

/// What is shown. Lengths in points, as the printer sees the sheet: not turned.
struct PagePictureContent {
    double sheetWidth = 0, sheetHeight = 0;
    /// The lower left corner of what is printed, from that of the sheet.
    double left = 0, bottom = 0;
    double areaWidth = 0, areaHeight = 0; ///< of what is printed
    bool isTurned = false;                ///< the page lies on the sheet turned by 90 degrees
    bool isFlippedHorizontally = false, isFlippedVertically = false;
};

/// The sheet with its imageable area, and in it a page of text and a picture, turned and mirrored
/// as chosen.
@interface ZELPagePicture : NSView {
    PagePictureContent _content;
}
- (void)show:(const PagePictureContent &)content;

/// Where the sheet and its imageable area are drawn, in the view's coordinates.
- (NSRect)sheetRect;
- (NSRect)areaRect;

/// From the page as one reads it, from (0, 0) to (1, 1), to the view's coordinates.
- (NSAffineTransform *)pageTransform;
@end
