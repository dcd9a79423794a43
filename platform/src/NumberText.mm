// Numbers as the user's locale writes them.
#import <Foundation/Foundation.h>
#include <algorithm>
#include <platform/Platform.h>

namespace {

std::string Text(NSString *string) {
    const char *bytes = [string UTF8String];
    return bytes ? bytes : "";
}

NSNumberFormatter *Formatter(NSUInteger decimals) {
    NSNumberFormatter *formatter = [[[NSNumberFormatter alloc] init] autorelease];
    // Not the 10.0 behaviour: its "0.00" format writes "01." for 1 in GNUstep.
    [formatter setFormatterBehavior:NSNumberFormatterBehavior10_4];
    [formatter setNumberStyle:NSNumberFormatterDecimalStyle];
    [formatter setUsesGroupingSeparator:NO];
    [formatter setMinimumIntegerDigits:1];
    [formatter setMinimumFractionDigits:decimals];
    [formatter setMaximumFractionDigits:decimals];
    return formatter;
}

/// Asked of a formatter of our own: NSLocale's answer comes out of a dictionary that GNUstep fills
/// without a lock and that all threads share.
NSString *Separator() {
    NSString *separator = [Formatter(0) decimalSeparator];
    return [separator length] ? separator : @".";
}

/// The text with a point for the locale's separator; nil when it has a point of its own, which
/// would be grouping or a mistake. GNUstep's localized scanner cannot be used: it takes the
/// separator from the C library's locales, which need not be installed.
NSString *WithPoint(NSString *text) {
    NSString *separator = Separator();
    if ([separator isEqual:@"."]) return text;
    if ([text rangeOfString:@"."].length != 0) return nil;
    return [text stringByReplacingOccurrencesOfString:separator withString:@"."];
}

bool Scan(NSString *text, double &value) {
    if (text == nil) return false;
    NSScanner *scanner = [NSScanner scannerWithString:text];
    [scanner setLocale:[NSDictionary dictionaryWithObject:@"." forKey:NSDecimalSeparator]];
    double number = 0;
    if (![scanner scanDouble:&number] || ![scanner isAtEnd]) return false;
    value = number;
    return true;
}

} // namespace

std::string PlatformFormatNumber(double value, int decimals) {
    @autoreleasepool {
        NSNumberFormatter *formatter = Formatter((NSUInteger)std::clamp(decimals, 0, 20));
        return Text([formatter stringFromNumber:[NSNumber numberWithDouble:value]]);
    }
}

bool PlatformScanNumber(const std::string &text, double &value) {
    @autoreleasepool {
        NSString *string = [NSString stringWithUTF8String:text.c_str()];
        return string != nil && Scan(WithPoint(string), value);
    }
}
