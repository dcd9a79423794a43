// A host of the driver that shows one dialog, for a test that moves the real pointer and presses
// real keys; nothing here acts on the dialog.
//
// dialog_host style|job|job-copies: the record is read from the file in ZEL_RECORD and written
// back; the result goes to ZEL_RESULT.
#include "ZELPrint.h"
#include "dialogs/JobDialog.h"
#include "support/CFRef.h"
#include "tests/dialogs/EndOfProcess.h"
#include "tests/dialogs/TestBundle.h"

#import <Foundation/Foundation.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

static const char *Environment(const char *name) {
    const char *value = std::getenv(name);
    if (value == nullptr) {
        fprintf(stderr, "%s is not set\n", name);
        std::exit(2);
    }
    return value;
}

static void ReadRecord(Handle record) {
    FILE *file = fopen(Environment("ZEL_RECORD"), "rb");
    if (file == nullptr || fread(*record, 1, sizeof(PSHPrint), file) != sizeof(PSHPrint))
        std::exit(2);
    fclose(file);
}

static void WriteRecord(Handle record) {
    FILE *file = fopen(Environment("ZEL_RECORD"), "wb");
    fwrite(*record, 1, sizeof(PSHPrint), file);
    fclose(file);
}

static std::string RunWithCopies() {
    JobChoices choices;
    choices.hotFolder = CFRef<CFURLRef>(FolderURL(Environment("ZEL_HOT_FOLDER")));
    choices.copies = 2;
    choices.collate = true;
    const bool confirmed =
        JobDialog(TestBundleIdentifier(), {CFSTR("Copies"), CFSTR("My job"), CFSTR("ps")}, choices);
    char text[200];
    snprintf(text, sizeof text, "confirmed %d copies %d collate %d first %d last %d", confirmed,
             *choices.copies, *choices.collate, choices.firstPage, choices.lastPage);
    return text;
}

static std::string RunWithDriver(const std::string &what) {
    DriverContext *context = nullptr;
    if (ZELPrOpen(TestBundle(), &context) != 0) return "not opened";
    Handle record = NewHandleClear(sizeof(PSHPrint));
    ReadRecord(record);
    const ZELPageRecord page = {2480, 3508, 210, 297};
    ZELPrSuggestPage(context, nullptr, &page, 32);
    (void)ZELPrSetJobName(context, nullptr, CFSTR("My job"));
    const Boolean confirmed =
        what == "style" ? ZELPrStyle(context, record) : ZELPrJob(context, record);
    const int32_t opened = confirmed ? 0 : ZELPrOpenDoc(context);
    WriteRecord(record);
    const int32_t closed = ZELPrClose(context);
    char text[200];
    snprintf(text, sizeof text, "confirmed %d opened %d closed %d", confirmed, opened, closed);
    return text;
}

int main(int argc, char **argv) {
    @autoreleasepool {
        const std::string what = argc > 1 ? argv[1] : "";
        const std::string result = what == "job-copies" ? RunWithCopies() : RunWithDriver(what);
        FILE *file = fopen(Environment("ZEL_RESULT"), "w");
        fprintf(file, "%s", result.c_str());
        fclose(file);
        EndProcess(0);
    }
}
