// Comparison of strings. Not NSString's own: GNUstep's collates by the current locale, ignores
// NSNumericSearch together with NSLiteralSearch, and ignores case folding when given the POSIX
// locale.
#include "CFBridge.h"

namespace {

/// A string being read from front to back.
struct Cursor {
    NSString *text;
    NSUInteger at, length;

    explicit Cursor(NSString *string) : text(string), at(0), length([string length]) {}
    [[nodiscard]] bool AtEnd() const { return at == length; }
    [[nodiscard]] unichar Peek() const { return [text characterAtIndex:at]; }
    [[nodiscard]] bool AtDigit() const { return !AtEnd() && Peek() >= '0' && Peek() <= '9'; }
    [[nodiscard]] NSUInteger DigitsAhead() const {
        Cursor ahead = *this;
        while (ahead.AtDigit())
            ++ahead.at;
        return ahead.at - at;
    }
    void SkipZeros() {
        while (!AtEnd() && Peek() == '0')
            ++at;
    }
};

template <class T> CFComparisonResult Order(T a, T b) {
    if (a == b) return kCFCompareEqualTo;
    return a < b ? kCFCompareLessThan : kCFCompareGreaterThan;
}

CFComparisonResult CompareUnits(Cursor &a, Cursor &b, NSUInteger count) {
    for (NSUInteger i = 0; i < count; ++i, ++a.at, ++b.at)
        if (a.Peek() != b.Peek()) return Order(a.Peek(), b.Peek());
    return kCFCompareEqualTo;
}

/// Compares two runs of digits by their value, however long they are.
CFComparisonResult CompareNumbers(Cursor &a, Cursor &b) {
    a.SkipZeros();
    b.SkipZeros();
    const NSUInteger digits = a.DigitsAhead();
    if (digits != b.DigitsAhead()) return Order(digits, b.DigitsAhead());
    return CompareUnits(a, b, digits);
}

CFComparisonResult Compare(Cursor a, Cursor b, bool numerically) {
    while (!a.AtEnd() && !b.AtEnd()) {
        const bool numbers = numerically && a.AtDigit() && b.AtDigit();
        const CFComparisonResult order = numbers ? CompareNumbers(a, b) : CompareUnits(a, b, 1);
        if (order != kCFCompareEqualTo) return order;
    }
    return Order(a.length - a.at, b.length - b.at);
}

} // namespace

extern "C" CFComparisonResult CFStringCompare(CFStringRef theString1, CFStringRef theString2,
                                              CFStringCompareFlags compareOptions) {
    @autoreleasepool {
        NSString *a = String(theString1);
        NSString *b = String(theString2);
        if (compareOptions & kCFCompareCaseInsensitive) {
            a = [a lowercaseString];
            b = [b lowercaseString];
        }
        return Compare(Cursor(a), Cursor(b), (compareOptions & kCFCompareNumerically) != 0);
    }
}
