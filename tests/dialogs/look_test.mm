// How the dialogs look: what a person would notice, measured on the windows themselves.
#import "platform/toolkit/gnustep/ThemeColours.h"
#import "tests/dialogs/StyleFlow.h"

#include <cmath>

namespace {

/// What a view shows on the screen.
NSBitmapImageRep *Shot(NSView *view) {
    [[view window] display];
    [view lockFocus];
    NSBitmapImageRep *shot =
        [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[view bounds]] autorelease];
    [view unlockFocus];
    return shot;
}

bool IsNear(NSColor *colour, NSColor *wanted) {
    NSColor *a = [colour colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    NSColor *b = [wanted colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    constexpr double kTolerance = 0.04;
    return std::abs([a redComponent] - [b redComponent]) < kTolerance &&
           std::abs([a greenComponent] - [b greenComponent]) < kTolerance &&
           std::abs([a blueComponent] - [b blueComponent]) < kTolerance;
}

/// Pixels of the accent colour in a view.
int AccentPixels(NSView *view) {
    NSBitmapImageRep *shot = Shot(view);
    int count = 0;
    for (NSInteger y = 0; y < [shot pixelsHigh]; ++y)
        for (NSInteger x = 0; x < [shot pixelsWide]; ++x)
            if (IsNear([shot colorAtX:x y:y], ThemeAccent())) ++count;
    return count;
}

/// The rightmost column of a view's left `width` points that has dark ink in it; -1 for none.
int LastInk(NSView *view, int width) {
    NSBitmapImageRep *shot = Shot(view);
    for (NSInteger x = std::min<NSInteger>(width, [shot pixelsWide]) - 1; x >= 0; --x)
        for (NSInteger y = 6; y < [shot pixelsHigh] - 6; ++y)
            if ([[shot colorAtX:x y:y] brightnessComponent] < 0.5) return (int)x;
    return -1;
}

/// Has a column of a view's picture dark ink in its upper half?
bool HasInkAbove(NSView *view, int column) {
    NSBitmapImageRep *shot = Shot(view);
    for (NSInteger y = 3; y < [shot pixelsHigh] / 2; ++y)
        if ([[shot colorAtX:column y:y] brightnessComponent] < 0.5) return true;
    return false;
}

/// Views of a kind that are to be seen, in a view.
int VisibleViews(NSView *view, Class kind) {
    int count = 0;
    for (NSView *sub in [view subviews]) {
        if ([sub isHidden]) continue;
        if ([sub isKindOfClass:kind]) ++count;
        count += VisibleViews(sub, kind);
    }
    return count;
}

NSTextField *FieldWith(NSWindow *window, const std::string &text) {
    for (NSView *view in [[window contentView] subviews])
        if ([view isKindOfClass:[NSTextField class]] && Text(view) == text)
            return (NSTextField *)view;
    return nil;
}

TEST_F(StyleFlow, Look_DefaultButton_AloneIsFilled) {
    WhenOpen([] {
        EXPECT_GT(AccentPixels([Controller() okButton]), 1000);
        EXPECT_EQ(AccentPixels([Controller() cancelButton]), 0);
        EXPECT_EQ([[Controller() okButton] image], nil);
    });
    Press(@"Cancel");
    Run();
}

// What is drawn anew would cut off its neighbour.
TEST_F(StyleFlow, Look_Controls_DoNotLieOnOneAnother) {
    WhenOpen([] {
        NSArray *views = [[DialogWindow() contentView] subviews];
        for (NSUInteger i = 0; i < [views count]; ++i)
            for (NSUInteger j = i + 1; j < [views count]; ++j) {
                NSView *a = [views objectAtIndex:i], *b = [views objectAtIndex:j];
                EXPECT_FALSE(NSIntersectsRect([a frame], [b frame]))
                    << [[a description] UTF8String] << ", " << [[b description] UTF8String];
            }
    });
    Press(@"Cancel");
    Run();
}

TEST_F(StyleFlow, Look_CheckBoxes_AreFilledWhenOn) {
    WhenOpen([] {
        EXPECT_EQ(AccentPixels([Controller() rotateBox]), 0);
        [[Controller() rotateBox] setState:NSOnState];
        EXPECT_GT(AccentPixels([Controller() rotateBox]), 50);
    });
    Press(@"Cancel");
    Run();
}

TEST_F(StyleFlow, Look_ControlWithTheKeyboard_HasARingAndLosesIt) {
    WhenOpen([] {
        for (NSControl *control : std::vector<NSControl *>{[Controller() pageWidth],
                                                           [Controller() unitsMenu],
                                                           [Controller() cancelButton],
                                                           [Controller() rotateBox]}) {
            [DialogWindow() makeFirstResponder:nil];
            EXPECT_EQ(AccentPixels(control), 0) << [[control description] UTF8String];
            [DialogWindow() makeFirstResponder:control];
            EXPECT_GT(AccentPixels(control), 40) << [[control description] UTF8String];
        }
        [DialogWindow() makeFirstResponder:[Controller() pageWidth]];
        EXPECT_GT(AccentPixels([Controller() pageWidth]), 20);
        [DialogWindow() makeFirstResponder:[Controller() unitsMenu]];
        [DialogWindow() displayIfNeeded];
        EXPECT_EQ(AccentPixels([Controller() pageWidth]), 0);
    });
    Press(@"Cancel");
    Run();
}

TEST_F(StyleFlow, Look_LongTitles_EndBeforeTheChevronAndTheBorder) {
    PPDOptions options;
    options.extra = "*PageSize Long/" + std::string(80, 'W') +
                    ": \"\"\n"
                    "*ImageableArea Long: \"0 0 200 500\"\n";
    UsePrinter(options);
    WhenOpen([] {
        NSPopUpButton *popup = [Controller() pagesMenu];
        ChooseTag(popup, 2);
        ASSERT_EQ(std::string([[popup titleOfSelectedItem] UTF8String]), std::string(80, 'W'));
        const int width = (int)NSWidth([popup bounds]);
        EXPECT_GT(LastInk(popup, width - 22), width / 2);
        EXPECT_LT(LastInk(popup, width - 15), width - 19);
        // The dots of an ellipsis, and no half letter.
        EXPECT_FALSE(HasInkAbove(popup, LastInk(popup, width - 15)));
        NSButton *button = [Controller() choosePPDButton];
        [button setTitle:[@"" stringByPaddingToLength:80 withString:@"W" startingAtIndex:0]];
        EXPECT_LT(LastInk(button, 1000), NSWidth([button bounds]) - 3);
        EXPECT_FALSE(HasInkAbove(button, LastInk(button, 1000)));
    });
    Press(@"Cancel");
    Run();
}

TEST_F(StyleFlow, Look_ButtonThatOpensASheet_DoesNotStayPressed) {
    PPDOptions options;
    options.hasCustomPages = false;
    UsePrinter(options);
    WhenOpen([] { PressLater([Controller() documentSizeButton]); });
    WhenAbove([] {
        EXPECT_FALSE([[[Controller() documentSizeButton] cell] isHighlighted]);
        PressButton(WindowAboveDialog(), @"Cancel");
    });
    Press(@"Cancel");
    Run();
}

TEST_F(StyleFlow, Look_Alert_HasTextOfNormalSizeAndNoEmptyHalf) {
    PPDOptions options;
    options.hasCustomPages = false;
    UsePrinter(options);
    WhenOpen([] { PressLater([Controller() documentSizeButton]); });
    WhenAbove([] {
        NSWindow *alert = WindowAboveDialog();
        NSTextField *message = FieldWith(alert, "This printer has no custom page sizes.");
        NSTextField *informative =
            FieldWith(alert, "The standard size that suits the document best will be used.");
        ASSERT_TRUE(message != nil && informative != nil);
        EXPECT_EQ([[message font] pointSize], 13);
        EXPECT_EQ([[informative font] pointSize], 13);
        NSButton *ok = FindButton(alert, @"OK"), *cancel = FindButton(alert, @"Cancel");
        // From top to bottom: margin, texts, gap, buttons, margin.
        EXPECT_LE(NSMaxY([[alert contentView] bounds]) - NSMaxY([message frame]), 24);
        EXPECT_LE(NSMinY([message frame]) - NSMaxY([informative frame]), 10);
        EXPECT_LE(NSMinY([informative frame]) - NSMaxY([ok frame]), 30);
        EXPECT_LE(NSMinY([ok frame]), 24);
        EXPECT_GT(NSMinX([ok frame]), NSMaxX([cancel frame]));
        EXPECT_GT(AccentPixels(ok), 1000);
        EXPECT_EQ(AccentPixels(cancel), 0);
        TakePicture(alert, "look-alert");
        PressButton(alert, @"Cancel");
    });
    Press(@"Cancel");
    Run();
}

TEST_F(StyleFlow, Look_FilePanel_HasRoomForFilesAndNoLogo) {
    WhenOpen([] { PressLater([Controller() choosePPDButton]); });
    WhenAbove([] {
        NSWindow *panel = WindowAboveDialog();
        EXPECT_EQ(VisibleViews([panel contentView], [NSImageView class]), 0);
        EXPECT_GE(NSWidth([[panel contentView] bounds]), 600);
        EXPECT_EQ([FindButton(panel, @"OK") image], nil);
        TakePicture(panel, "look-panel");
        PressButton(panel, @"Cancel");
    });
    Press(@"Cancel");
    Run();
}

TEST_F(StyleFlow, PagePicture_FollowsSizeAndRotation) {
    WhenOpen([] {
        ZELPagePicture *picture = [Controller() pagePicture];
        NSRect sheet = [picture sheetRect];
        EXPECT_NEAR(NSWidth(sheet) / NSHeight(sheet), 595.0 / 842, 0.01);
        TypeInto([Controller() pageWidth], "300");
        sheet = [picture sheetRect];
        EXPECT_GT(NSWidth(sheet), NSHeight(sheet));
        ChooseTag([Controller() pagesMenu], 0);
        [Controller() setRotate90:YES];
        // The sheet in the printer stays as it is, the page on it is turned.
        sheet = [picture sheetRect];
        EXPECT_NEAR(NSWidth(sheet) / NSHeight(sheet), 595.0 / 842, 0.01);
    });
    Press(@"Cancel");
    Run();
}

TEST_F(StyleFlow, PagePicture_UnevenMargins_AreThoseOfThePrintersSheet) {
    PPDOptions options;
    options.hasPages = false;
    options.extra = "*PageSize A4: \"\"\n*ImageableArea A4: \"12 60 560 820\"\n"
                    "*PaperDimension A4: \"595 842\"\n";
    UsePrinter(options);
    WhenOpen([] {
        const NSRect sheet = [[Controller() pagePicture] sheetRect];
        const NSRect area = [[Controller() pagePicture] areaRect];
        const double scale = NSHeight(sheet) / 842;
        EXPECT_NEAR(NSWidth(sheet), 595 * scale, 1);
        EXPECT_NEAR(NSMinX(area) - NSMinX(sheet), 12 * scale, 1);
        EXPECT_NEAR(NSMaxX(sheet) - NSMaxX(area), 35 * scale, 1);
        EXPECT_NEAR(NSMinY(area) - NSMinY(sheet), 60 * scale, 1);
        EXPECT_NEAR(NSMaxY(sheet) - NSMaxY(area), 22 * scale, 1);
        TakePicture(DialogWindow(), "look-uneven-margins");
    });
    Press(@"Cancel");
    Run();
}

struct Orientation {
    bool turned, flippedH, flippedV;
    /// Where the page's upper left and upper right corners come to lie on the sheet: 0 or 1 of its
    /// width and height.
    NSPoint upperLeft, upperRight;
};

TEST(PagePicture, Corners_LieWhereTheDocumentPutsThem) {
    const Orientation table[] = {
        {false, false, false, {0, 1}, {1, 1}}, {false, true, false, {1, 1}, {0, 1}},
        {false, false, true, {0, 0}, {1, 0}},  {false, true, true, {1, 0}, {0, 0}},
        {true, false, false, {0, 0}, {0, 1}},  {true, true, false, {0, 1}, {0, 0}},
        {true, false, true, {1, 0}, {1, 1}},   {true, true, true, {1, 1}, {1, 0}}};
    ZELPagePicture *picture =
        [[[ZELPagePicture alloc] initWithFrame:NSMakeRect(0, 0, 112, 212)] autorelease];
    for (const Orientation &row : table) {
        PagePictureContent content;
        content.sheetWidth = content.areaWidth = 100;
        content.sheetHeight = content.areaHeight = 200;
        content.isTurned = row.turned;
        content.isFlippedHorizontally = row.flippedH;
        content.isFlippedVertically = row.flippedV;
        [picture show:content];
        const NSRect area = [picture areaRect];
        const auto corner = [&](NSPoint wanted, NSPoint page) {
            const NSPoint at = [[picture pageTransform] transformPoint:page];
            EXPECT_NEAR(at.x, NSMinX(area) + wanted.x * NSWidth(area), 0.01);
            EXPECT_NEAR(at.y, NSMinY(area) + wanted.y * NSHeight(area), 0.01);
        };
        corner(row.upperLeft, NSMakePoint(0, 1));
        corner(row.upperRight, NSMakePoint(1, 1));
    }
}

TEST(PagePicture, SizesWithoutAPicture_AreDrawnAsNothing) {
    ZELPagePicture *picture =
        [[[ZELPagePicture alloc] initWithFrame:NSMakeRect(0, 0, 112, 212)] autorelease];
    for (const double size : {0.0, -5.0, static_cast<double>(NAN), static_cast<double>(INFINITY)}) {
        PagePictureContent content;
        content.sheetWidth = content.areaWidth = size;
        content.sheetHeight = content.areaHeight = 200;
        [picture show:content];
        EXPECT_TRUE(NSIsEmptyRect([picture sheetRect]));
    }
    PagePictureContent strip;
    strip.sheetWidth = strip.areaWidth = 1;
    strip.sheetHeight = strip.areaHeight = 1000000;
    [picture show:strip];
    EXPECT_GE(NSWidth([picture sheetRect]), 2);
    EXPECT_LE(NSHeight([picture sheetRect]), 212);
}

} // namespace
