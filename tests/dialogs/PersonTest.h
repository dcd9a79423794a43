/// What the tests with a person in front of the dialogs start from.
#pragma once

#include "tests/dialogs/Person.h"
#include "tests/dialogs/TestPPD.h"

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>
#include <string>

/// A user without preferences, under a window manager, in a folder of the test's own.
class PersonTest : public testing::Test {
protected:
    PersonTest();
    ~PersonTest() override;

    /// Stores a bookmark in the driver's preferences.
    static void SavePlace(CFStringRef key, const std::string &path);
    /// The windows have never been open.
    static void ForgetWindowPlaces();
    void UsePrinter(const PPDOptions &options);
    void OpenStyle(const PSHPrint &record);
    /// Presses OK on what is typed; the alert must have that text, and the field is selected then.
    /// The last one of that field leaves a picture of that name.
    void ExpectRefused(const std::string &field, const std::string &message,
                       const std::string &picture = "refused");

    std::string mFolder;
    Person mPerson;
};

/// On page A4 at 300 dpi, all pages, five copies.
PSHPrint GoodRecord();
/// Differs `record` from `expected` in no byte?
void ExpectSameRecord(const PSHPrint &record, const PSHPrint &expected);
void SetPreference(CFStringRef key, CFTypeRef value);
/// All bytes of the driver's preferences; empty when there are none.
std::string PreferencesFile();
