/// What the tests of the page-setup dialog start from.
#pragma once

#import "dialogs/StyleDialogController.h"
#import "tests/dialogs/DialogScript.h"
#include "tests/dialogs/TestPPD.h"

#include "Common/Src/record/PageSetup.h"
#include "Common/Src/record/PrintRecord.h"

#include <gtest/gtest.h>
#include <string>

/// A printer, a record on its page A4 at 300 dpi, a document of A4 at 300 dpi, and the dialog.
class StyleFlow : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    /// Starts over with a printer.
    void UsePrinter(const PPDOptions &options);
    /// Puts a separation profile into the user's folder and lists the profiles again.
    void AddProfile(const std::string &name);
    void RemoveProfile(const std::string &name);
    void SetSeparation(const std::string &name);

    void WhenOpen(DialogScript::Action action) { mScript.When("the dialog", DialogIsOpen, action); }
    void WhenAbove(DialogScript::Action action) {
        mScript.When("an alert, sheet or panel", SomethingIsAbove, action);
    }
    void Press(NSString *title) {
        WhenOpen([title] { PressButton(DialogWindow(), title); });
    }
    /// Runs the dialog; every step must have run.
    bool Run();

    /// The record differs from `expected` in no byte.
    static void ExpectSameRecord(const PSHPrint &record, const PSHPrint &expected);

    DialogScript mScript;
    std::string mFolder;
    PSHPrint mRecord = {};
    Separations *mSeparations = nullptr;
    PageSetupSources mParams = {};
    PostscriptPrinterInfo *mPrinter = nullptr;
};

PostscriptPrinterStyleDialogController *Controller();
/// The record as the dialog that is open has it.
const PSHPrint &ShownRecord();
std::string PageName();
std::string ResolutionName();

/// All bytes of the preferences' file; empty when there is none.
std::string PreferencesFile();
void ClearPreferences();
void SetPreference(CFStringRef key, CFTypeRef value);
