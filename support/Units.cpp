#include "support/Units.h"

#include <algorithm>
#include <cmath>
#include <platform/Platform.h>

namespace {

constexpr double kPointsPerInch = 72.0;
constexpr double kMillimetresPerInch = 25.4;

NumberRange DisplayedRange(NumberRange points, int dialogUnit, double dpi) {
    return {DisplayedFromPoints(points.low, dialogUnit, dpi),
            DisplayedFromPoints(points.high, dialogUnit, dpi)};
}

std::string FormatDisplayed(double displayed, int dialogUnit) {
    return FormatDouble(dialogUnit == kPixels ? 0 : 2, displayed);
}

/// What a reader of the formatted number sees; the number itself if that cannot be read.
double AsShown(double number) {
    double shown = number;
    if (!PlatformScanNumber(FormatDouble(2, number), shown)) return number;
    return shown;
}

std::string RangeMessage(const std::string &label, int dialogUnit, NumberRange displayed) {
    return label + " should be a number between " + FormatDisplayed(displayed.low, dialogUnit) +
           " and " + FormatDisplayed(displayed.high, dialogUnit) + ".";
}

} // namespace

FetchResult FetchDoubleFromText(const std::string &text, double &value, NumberRange range) {
    value = 0.0;
    double number = 0.0;
    if (!PlatformScanNumber(text, number)) return kFetchNotANumber;
    if (!(range.low <= number && number <= range.high)) return kFetchOutOfRange;
    value = number;
    return kFetchNumber;
}

std::string FormatDouble(int decimals, double number) {
    return PlatformFormatNumber(number, std::clamp(decimals, 0, 20));
}

double KeptUnitFactor(int fieldUnit) {
    static constexpr double kFactors[] = {1.0, kMillimetresPerInch};
    if (fieldUnit == kFieldPoints) return kMillimetresPerInch / kPointsPerInch;
    return kFactors[fieldUnit == kFieldInches ? 1 : 0];
}

FetchResult FetchUnitNumberFromText(const std::string &text, int fieldUnit, double &value,
                                    NumberRange range) {
    constexpr double kSlack = 0.000001;
    const double factor = KeptUnitFactor(fieldUnit);
    double number = 0.0;
    const FetchResult result = FetchDoubleFromText(
        text, number, {range.low / factor - kSlack, range.high / factor + kSlack});
    value = factor * number;
    return result;
}

NumberRange AcceptedRange(int fieldUnit, NumberRange range) {
    const double factor = KeptUnitFactor(fieldUnit);
    const double lowShown = AsShown(range.low / factor) * factor;
    const double highShown = AsShown(range.high / factor) * factor;
    return {std::min(range.low, lowShown), std::max(range.high, highShown)};
}

double DisplayedFromPoints(double points, int dialogUnit, double dpi) {
    switch (dialogUnit) {
        case kPixels:
            // Not lround: a page may be too many pixels for any integer type.
            return std::round(dpi * points / kPointsPerInch);
        case kMillimetres:
            return points * kMillimetresPerInch / kPointsPerInch;
        case kInches:
            return points / kPointsPerInch;
        default:
            return points;
    }
}

double PointsFromDisplayed(double displayed, int dialogUnit, double dpi) {
    switch (dialogUnit) {
        case kPixels:
            return displayed * kPointsPerInch / dpi;
        case kMillimetres:
            return displayed * kPointsPerInch / kMillimetresPerInch;
        case kInches:
            return displayed * kPointsPerInch;
        default:
            return displayed;
    }
}

std::string FormatPoints(double points, int dialogUnit, double dpi) {
    return FormatDisplayed(DisplayedFromPoints(points, dialogUnit, dpi), dialogUnit);
}

bool ReadDimension(const std::string &text, int dialogUnit, double dpi, NumberRange range,
                   double &points) {
    double displayed = 0.0;
    if (FetchDoubleFromText(text, displayed, DisplayedRange(range, dialogUnit, dpi)) !=
        kFetchNumber)
        return false;
    points = PointsFromDisplayed(displayed, dialogUnit, dpi);
    return true;
}

DimensionCheck CheckDimension(const std::string &text, const std::string &label, int dialogUnit,
                              double dpi, NumberRange range) {
    // Looser than any page size: what lies outside is a slip of the keyboard and not a size.
    constexpr NumberRange kTypeable = {-0.01, 1e9};
    const NumberRange displayed = DisplayedRange(range, dialogUnit, dpi);
    double number = 0.0;
    DimensionCheck check = {true, 0.0, {}};
    if (FetchDoubleFromText(text, number, kTypeable) != kFetchNumber) {
        check.isValid = false;
        check.message = label + " is not a number.";
    } else if (number < displayed.low || number > displayed.high) {
        check.isValid = false;
        check.message = RangeMessage(label, dialogUnit, displayed);
        number = number < displayed.low ? displayed.low : displayed.high;
    }
    check.points = PointsFromDisplayed(number, dialogUnit, dpi);
    return check;
}
