/// The arithmetic behind the dialogs' number fields: reading, range checks and units, without any
/// widget. Numbers are written and read with the decimal separator of the user's locale.
#pragma once

#include <algorithm>
#include <string>

/// What reading a number gives.
enum FetchResult : int {
    kFetchNumber = 0,     ///< a number within the range
    kFetchNotANumber = 1, ///< empty, not a number, or a number with something after it
    kFetchOutOfRange = 2  ///< a number outside the range
};

/// Units of the field helpers. The kept value is in millimetres: the shown number times a factor.
enum FieldUnit : int { kFieldMillimetres = 0, kFieldPoints = 1, kFieldInches = 3 };

/// Units of the page-setup dialog, which keeps points (1/72 inch). Stored in the preferences.
enum DialogUnit : int { kPixels = 0, kPoints = 1, kMillimetres = 2, kInches = 3 };

struct NumberRange {
    double low, high; ///< both inclusive
};

/// The value, or the limit that it is beyond. The lower limit wins where the limits cross, the
/// upper one over a value that is no number.
[[nodiscard]] inline double Clamped(double value, NumberRange range) {
    return std::max(range.low, std::min(range.high, value));
}

/// Reads `text`. `value` is the number when the result is kFetchNumber, otherwise 0.
[[nodiscard]] FetchResult FetchDoubleFromText(const std::string &text, double &value,
                                              NumberRange range);

/// `number` with a fixed number of decimals (at most 20; less than 1: none), without grouping.
[[nodiscard]] std::string FormatDouble(int decimals, double number);

/// Millimetres in one field unit: 25.4/72 for kFieldPoints, 25.4 for kFieldInches, 1 for any other.
[[nodiscard]] double KeptUnitFactor(int fieldUnit);

/// As FetchDoubleFromText, with value and range in kept units. The range is widened by one
/// millionth of a shown unit on each side, so that a limit survives its conversion.
[[nodiscard]] FetchResult FetchUnitNumberFromText(const std::string &text, int fieldUnit,
                                                  double &value, NumberRange range);

/// The range (kept units) widened so that a limit typed exactly as it is shown, with two decimals,
/// lies within it.
[[nodiscard]] NumberRange AcceptedRange(int fieldUnit, NumberRange range);

/// A length as the page-setup dialog shows it. `dpi` counts for pixels only, which are whole.
[[nodiscard]] double DisplayedFromPoints(double points, int dialogUnit, double dpi);
[[nodiscard]] double PointsFromDisplayed(double displayed, int dialogUnit, double dpi);

/// A length in points as text: pixels without decimals, other units with two.
[[nodiscard]] std::string FormatPoints(double points, int dialogUnit, double dpi);

/// Reads a length as the user types, without a word about what is wrong with it. `range` and
/// `points` are in points; `points` is left alone unless the text is a number within the range.
[[nodiscard]] bool ReadDimension(const std::string &text, int dialogUnit, double dpi,
                                 NumberRange range, double &points);

/// Result of checking a dimension.
struct DimensionCheck {
    bool isValid;
    double points;       ///< the number; the nearest limit when out of range; 0 for no number
    std::string message; ///< for the user; empty when valid
};

/// The check made on confirmation. `label` names the field in the message; `range` is in points.
[[nodiscard]] DimensionCheck CheckDimension(const std::string &text, const std::string &label,
                                            int dialogUnit, double dpi, NumberRange range);
