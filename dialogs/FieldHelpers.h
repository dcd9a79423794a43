/// Reading and writing numbers in text fields. A field is an NSTextField or any control with a
/// `stringValue`. Units and results are those of support/Units.h. Main thread only.
#pragma once

#include "support/Units.h"

#import <AppKit/AppKit.h>

/// Reads the field's number. `*value` is 0 unless the result is kFetchNumber.
int FetchDouble(id field, double *value, double low, double high);

/// Reads a number of kept units. With `beepOnError` 1 a failure beeps and selects the field's text.
/// `*value` is 0 after a failure.
int FetchUnitNumber(id field, int fieldUnit, double *value, int beepOnError, double max,
                    double min);

/// Reads the field only when its text is no longer `*lastText` (owned; may be nil). Returns 1 when
/// a new number was read, with `*value` and `*lastText` replaced; otherwise 0 with both as they
/// were.
int FetchValue(id field, int fieldUnit, double *value, NSString **lastText, int beepOnError,
               double min, double max);

/// The check made when a field is left or confirmed; not 0 when the field is acceptable. `*value`
/// is then within [low, high]. Otherwise the user has heard a beep and the field is the first
/// responder.
int ValidateField(id field, int fieldUnit, double *value, NSString **lastText, double low,
                  double high);

/// Shows a number with that many decimals, at most 20.
void StuffDouble(id field, int decimals, double number);

/// Shows a kept value in the field's unit with two decimals.
void StuffUnitNumber(id field, int fieldUnit, double value);

/// The page-setup dialog's check on confirmation, limits and result in points. Returns 1 for a
/// valid field; otherwise 0 after a beep and a message with `label` in it, with the field's text
/// selected and `*points` the nearest limit (0 for text that is no number). `hint` stands below the
/// message; it may be nil.
int CheckDimensionField(id field, const char *label, int dialogUnit, double *points, double dpi,
                        double max, double min, NSString *hint = nil);
