// soak_dialogs COUNT: one host opens and closes the page-setup and the print dialog, that many
// times all together, confirmed and cancelled in turn. Needs a display. After the first tenth,
// descriptors and threads stay as they are, and next to no memory comes to it.
#include "ZELExtensions.h"
#include "ZELPrint.h"
#include "tests/dialogs/DialogScript.h"
#include "tests/dialogs/EndOfProcess.h"
#include "tests/dialogs/TestBundle.h"
#include "tests/soak/Usage.h"

#import <AppKit/AppKit.h>
#include <cstdlib>

namespace {

/// GNUstep leaves about 1 KB. A view or an interface file that is forgotten is more than this.
constexpr double kMostBytesADialog = 4096;

bool RunDialog(int number) {
    DriverContext *context = nullptr;
    if (ZELPrOpenWithPrinter(TestBundle(), nullptr, &context, nullptr) != 0) return false;
    Handle record = NewHandleClear(sizeof(PSHPrint));
    ZELPrDefaults(context, record);
    const ZELPageRecord page = {595, 842, 210, 297};
    ZELPrSuggestPage(context, nullptr, &page, 32);
    DialogScript script;
    const bool confirms = number % 4 == 1;
    script.When("the dialog is open", DialogIsOpen,
                [confirms] { PressKey(confirms ? "\r" : "\033"); });
    const bool confirmed = number % 2 ? ZELPrStyle(context, record) : ZELPrJob(context, record);
    DisposeHandle(record);
    (void)ZELPrClose(context);
    return confirmed == confirms && script.IsFinished();
}

int Soak(int count) {
    Usage before;
    int wrong = 0;
    for (int number = 0; number < count; ++number) {
        if (number == count / 10) {
            before = Usage::Now();
            before.Show("10 %");
        }
        @autoreleasepool {
            wrong += RunDialog(number) ? 0 : 1;
        }
    }
    const Usage after = Usage::Now();
    after.Show("100 %");
    const double each =
        (static_cast<double>(after.heap) - static_cast<double>(before.heap)) / (count - count / 10);
    printf("%d dialogs, %d ended otherwise than asked; %.1f KB a dialog\n", count, wrong,
           each / 1024);
    const bool same = after.descriptors == before.descriptors && after.threads == before.threads;
    return same && wrong == 0 && each < kMostBytesADialog ? 0 : 1;
}

} // namespace

int main(int argc, char **argv) {
    int status = 2;
    @autoreleasepool {
        if (argc == 2) status = Soak(atoi(argv[1]));
    }
    EndProcess(status);
}
