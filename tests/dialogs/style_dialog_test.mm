// The page-setup dialog, driven from inside its process on a display of the test's own.
#include "dialogs/StyleDialog.h"
#import "dialogs/StyleDialogController.h"
#import "tests/dialogs/DialogScript.h"
#include "tests/dialogs/TestBundle.h"
#include "tests/dialogs/TestPPD.h"

#include "Common/Src/PrintRecord.h"
#include "colour/Separations.h"
#include "ppd/PostscriptPrinterInfo.h"

#include <gtest/gtest.h>

namespace {
bool DialogIsOpen() { return DialogWindow() != nil && WindowAboveDialog() == nil; }

TEST(StyleDialogFlow, Open_Picture) {
    PostscriptPrinterInfo *info = new PostscriptPrinterInfo;
    Separations *separations = ScanSeparationsFolder();
    PSStyleParams params = {210, 297, 2480, 3508, 10, 10000, separations, &info};
    PSHPrint record = {};
    SetRecordName(record.mPageName, "A4");
    record.mXDpi_be = record.mYDpi_be = DoubleToBigEndian(300);
    DialogScript script;
    script.When("open", DialogIsOpen, [] {
        TakePicture(DialogWindow(), "style-no-ppd");
        PressButton(DialogWindow(), @"OK");
    });
    EXPECT_TRUE(StyleDialog(TestBundle(), TestBundleIdentifier(), &params, &record));
    DeleteSeparationsList(separations);
    delete info;
}

} // namespace
