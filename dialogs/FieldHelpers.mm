#import "dialogs/FieldHelpers.h"

#include "support/Alerts.h"

#include <algorithm>

namespace {

std::string FieldText(id field) {
    const char *text = [[field stringValue] UTF8String];
    return text != nullptr ? text : "";
}

void SetFieldText(id field, const std::string &text) {
    [field setStringValue:[NSString stringWithUTF8String:text.c_str()]];
}

void SelectFieldText(id field) {
    if ([field respondsToSelector:@selector(selectText:)]) [field selectText:nil];
}

void MakeFirstResponder(id field) {
    if ([field respondsToSelector:@selector(window)]) [[field window] makeFirstResponder:field];
}

void Remember(NSString **lastText, NSString *text) {
    NSString *copy = [text copy];
    [*lastText release];
    *lastText = copy;
}

} // namespace

int FetchDouble(id field, double *value, double low, double high) {
    return FetchDoubleFromText(FieldText(field), *value, {low, high});
}

int FetchUnitNumber(id field, int fieldUnit, double *value, int beepOnError, double max,
                    double min) {
    const int result = FetchUnitNumberFromText(FieldText(field), fieldUnit, *value, {min, max});
    if (result != kFetchNumber && beepOnError == 1) {
        NSBeep();
        SelectFieldText(field);
    }
    return result;
}

int FetchValue(id field, int fieldUnit, double *value, NSString **lastText, int beepOnError,
               double min, double max) {
    NSString *text = [field stringValue];
    if ([text isEqualToString:*lastText]) return 0;
    double number = 0.0;
    if (FetchUnitNumber(field, fieldUnit, &number, beepOnError, max, min) != kFetchNumber) return 0;
    Remember(lastText, text);
    *value = number;
    return 1;
}

int ValidateField(id field, int fieldUnit, double *value, NSString **lastText, double low,
                  double high) {
    const NumberRange accepted = AcceptedRange(fieldUnit, {low, high});
    bool isGood;
    if (![[field stringValue] isEqualToString:*lastText]) {
        isGood = FetchValue(field, fieldUnit, value, lastText, 1, accepted.low, accepted.high) != 0;
    } else {
        isGood = accepted.low <= *value && *value <= accepted.high;
        if (!isGood) NSBeep();
    }
    if (isGood)
        *value = std::max(low, std::min(high, *value));
    else
        MakeFirstResponder(field);
    return isGood ? 1 : 0;
}

void StuffDouble(id field, int decimals, double number) {
    SetFieldText(field, FormatDouble(decimals, number));
}

void StuffUnitNumber(id field, int fieldUnit, double value) {
    StuffDouble(field, 2, value / KeptUnitFactor(fieldUnit));
}

int CheckDimensionField(id field, const char *label, int dialogUnit, double *points, double dpi,
                        double max, double min, NSString *hint) {
    const DimensionCheck check =
        CheckDimension(FieldText(field), label, dialogUnit, dpi, {min, max});
    if (!check.isValid) {
        NSBeep();
        MessageAlert((CFStringRef)[NSString stringWithUTF8String:check.message.c_str()],
                     (CFStringRef)hint);
    }
    *points = check.points;
    if (!check.isValid) SelectFieldText(field);
    return check.isValid ? 1 : 0;
}
