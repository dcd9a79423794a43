// The page-setup dialog of a user whose preferences cannot be written. Runs with such a folder set.
#import "tests/dialogs/StyleFlow.h"
#include "tests/dialogs/TestBundle.h"

namespace {

TEST_F(StyleFlow, ReadOnlyPreferences_DialogStillConfirms) {
    WhenOpen([] {
        ChooseTag([Controller() unitsMenu], kInches);
        ChooseTag([Controller() pagesMenu], 1);
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(RecordName(mRecord.mPageName), "Letter");
    EXPECT_FALSE(CFPreferencesAppSynchronize(TestBundleIdentifier()));
}

} // namespace
