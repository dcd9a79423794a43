// The page setup at one and a half times its size: what a person would notice, measured on the
// window.
#import "tests/dialogs/StyleFlow.h"

namespace {

// Letters are drawn in the window's size and laid out in the usual one.
TEST_F(StyleFlow, Scaled_TextIsAsWideAsItIsDrawn) {
    WhenOpen([] {
        NSFont *laidOut = [NSFont systemFontOfSize:13], *drawn = [NSFont systemFontOfSize:130];
        for (NSString *text in
             [NSArray arrayWithObjects:@"Vertikal spiegeln", @"1234.56789",
                                       @"An die Standard-Warteschlange senden", nil]) {
            const CGFloat width =
                [text sizeWithAttributes:[NSDictionary dictionaryWithObject:laidOut
                                                                     forKey:NSFontAttributeName]]
                    .width;
            const CGFloat wanted =
                [text sizeWithAttributes:[NSDictionary dictionaryWithObject:drawn
                                                                     forKey:NSFontAttributeName]]
                    .width /
                10;
            EXPECT_NEAR(width, wanted, 0.5) << [text UTF8String];
        }
    });
    Press(@"Cancel");
    Run();
}

} // namespace
