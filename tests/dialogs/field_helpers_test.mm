// Reading and writing text fields, in a window and with real beeps counted.
#import "dialogs/DialogSupport.h"
#import "dialogs/FieldHelpers.h"
#import "platform/toolkit/Toolkit.h"
#import "tests/dialogs/DialogScript.h"

#include <gtest/gtest.h>

namespace {

class FieldHelpers : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(EnsureApplication());
        mWindow = [[NSWindow alloc] initWithContentRect:NSMakeRect(100, 100, 300, 100)
                                              styleMask:NSTitledWindowMask
                                                backing:NSBackingStoreBuffered
                                                  defer:NO];
        mField = [[NSTextField alloc] initWithFrame:NSMakeRect(20, 20, 100, 22)];
        mOther = [[NSTextField alloc] initWithFrame:NSMakeRect(150, 20, 100, 22)];
        [[mWindow contentView] addSubview:mField];
        [[mWindow contentView] addSubview:mOther];
        [mWindow makeKeyAndOrderFront:nil];
        [mWindow makeFirstResponder:mOther];
        mBeeps = BeepCount();
    }
    void TearDown() override {
        [mLastText release];
        [mWindow close];
        [mField release];
        [mOther release];
    }
    void Show(const char *text) { [mField setStringValue:[NSString stringWithUTF8String:text]]; }
    int Beeps() const { return BeepCount() - mBeeps; }

    NSWindow *mWindow;
    NSTextField *mField, *mOther;
    NSString *mLastText = nil;
    double mValue = 77;
    int mBeeps = 0;
};

TEST_F(FieldHelpers, FetchDouble_Field_GivesResultAndValue) {
    Show("12.5");
    EXPECT_EQ(FetchDouble(mField, &mValue, 0, 20), kFetchNumber);
    EXPECT_EQ(mValue, 12.5);
    EXPECT_EQ(FetchDouble(mField, &mValue, 0, 10), kFetchOutOfRange);
    EXPECT_EQ(mValue, 0);
    Show("12.5 mm");
    EXPECT_EQ(FetchDouble(mField, &mValue, 0, 20), kFetchNotANumber);
    Show("");
    EXPECT_EQ(FetchDouble(mField, &mValue, 0, 20), kFetchNotANumber);
}

TEST_F(FieldHelpers, FetchUnitNumber_Failure_BeepsOnlyWhenAsked) {
    Show("x");
    EXPECT_EQ(FetchUnitNumber(mField, kFieldPoints, &mValue, 0, 100, 0), kFetchNotANumber);
    EXPECT_EQ(Beeps(), 0);
    EXPECT_TRUE([mField currentEditor] == nil);
    EXPECT_EQ(FetchUnitNumber(mField, kFieldPoints, &mValue, 1, 100, 0), kFetchNotANumber);
    EXPECT_EQ(Beeps(), 1);
    EXPECT_TRUE(IsTextSelected(mField));
    EXPECT_EQ(mValue, 0);
}

TEST_F(FieldHelpers, FetchUnitNumber_Points_GivesMillimetres) {
    Show("72");
    EXPECT_EQ(FetchUnitNumber(mField, kFieldPoints, &mValue, 1, 25.4, 0), kFetchNumber);
    EXPECT_DOUBLE_EQ(mValue, 25.4);
    EXPECT_EQ(Beeps(), 0);
}

TEST_F(FieldHelpers, FetchValue_NewText_IsReadAndRemembered) {
    Show("5");
    EXPECT_EQ(FetchValue(mField, 0, &mValue, &mLastText, 1, 0, 10), 1);
    EXPECT_EQ(mValue, 5);
    EXPECT_TRUE([mLastText isEqual:@"5"]);
}

TEST_F(FieldHelpers, FetchValue_SameText_IsNotReadAndDoesNotBeep) {
    mLastText = [@"rubbish" copy];
    Show("rubbish");
    EXPECT_EQ(FetchValue(mField, 0, &mValue, &mLastText, 1, 0, 10), 0);
    EXPECT_EQ(mValue, 77);
    EXPECT_EQ(Beeps(), 0);
}

TEST_F(FieldHelpers, FetchValue_BadText_LeavesBothUnchanged) {
    mLastText = [@"5" copy];
    Show("11");
    EXPECT_EQ(FetchValue(mField, 0, &mValue, &mLastText, 1, 0, 10), 0);
    EXPECT_EQ(mValue, 77);
    EXPECT_TRUE([mLastText isEqual:@"5"]);
    EXPECT_EQ(Beeps(), 1);
}

TEST_F(FieldHelpers, ValidateField_LimitAsDisplayed_IsAcceptedAndClamped) {
    Show("35.28"); // 100 points are 35.2777... mm
    EXPECT_TRUE(
        ValidateField(mField, kFieldMillimetres, &mValue, &mLastText, 1, 35.27777777777778));
    EXPECT_DOUBLE_EQ(mValue, 35.27777777777778);
    EXPECT_EQ(Beeps(), 0);
}

TEST_F(FieldHelpers, ValidateField_BadText_BeepsAndTakesTheFocus) {
    Show("36");
    EXPECT_FALSE(ValidateField(mField, kFieldMillimetres, &mValue, &mLastText, 1, 35));
    EXPECT_EQ(Beeps(), 1);
    EXPECT_TRUE([mField currentEditor] != nil);
    EXPECT_EQ(mValue, 77);
}

TEST_F(FieldHelpers, ValidateField_UnchangedText_JudgesTheValue) {
    Show("20");
    mLastText = [@"20" copy];
    mValue = 20.001;
    EXPECT_TRUE(ValidateField(mField, kFieldMillimetres, &mValue, &mLastText, 1, 20.001));
    EXPECT_EQ(mValue, 20.001);
    mValue = 50;
    EXPECT_FALSE(ValidateField(mField, kFieldMillimetres, &mValue, &mLastText, 1, 20));
    EXPECT_EQ(Beeps(), 1);
    EXPECT_TRUE([mField currentEditor] != nil);
}

TEST_F(FieldHelpers, StuffDouble_Decimals_AreZeroToTwenty) {
    StuffDouble(mField, 0, 12.6);
    EXPECT_EQ(Text(mField), "13");
    StuffDouble(mField, 25, 0.5);
    EXPECT_EQ(Text(mField), "0.50000000000000000000");
}

TEST_F(FieldHelpers, StuffUnitNumber_Inches_ShowsTwoDecimals) {
    StuffUnitNumber(mField, kFieldInches, 254);
    EXPECT_EQ(Text(mField), "10.00");
}

} // namespace
