#include "Common/Src/DriverDialogs.h"

#include "Common/Src/DriverContext.h"
#include "Common/Src/record/PageSetup.h"
#include "Common/Src/record/Preferences.h"
#include "Common/Src/record/PrintRecord.h"
#include "ZELPrint.h"
#include "dialogs/JobDialog.h"
#include "dialogs/StyleDialog.h"
#include "ppd/LanguageEncoding.h"
#include "ppd/PostscriptPrinterInfo.h"
#include "support/BigEndian.h"
#include "support/CFText.h"

namespace {

CFStringRef JobDialogTitle(CFBundleRef bundle) {
    CFTypeRef name = CFBundleGetValueForInfoDictionaryKey(bundle, kCFBundleNameKey);
    if (!name || CFGetTypeID(name) != CFStringGetTypeID()) return CFSTR("Job Dialog");
    return static_cast<CFStringRef>(name);
}

/// What a cancelled dialog leaves behind: no error, but nothing is printed any more.
Boolean ConfirmedOrCancelled(DriverContext *context, bool confirmed) {
    if (!confirmed) context->state = SessionState::Cancelled;
    return confirmed;
}

/// The record that a dialog works on, kept for ZELPrOpenDoc; false when there is nothing to do.
bool BeginDialog(DriverContext *context, Handle record) {
    context->record = record;
    return context->state == SessionState::Ok;
}

/// As the pop-up of the page setup calls it.
std::string ShownPageName(const PostscriptPrinterInfo &printer, const std::string &name) {
    const int32_t index = printer.Pages().FindPageByName(name);
    if (index < 0) return name;
    const std::string &shown = printer.Pages().GetPage(index).GetUIName();
    return UTF8Text(PPD::DecodeText(shown, printer.GetLanguageEncoding()).Get()).value_or(name);
}

/// What the print dialog says about the document.
JobSummary SummaryOf(const DriverContext &context, const PSHPrint &record) {
    JobSummary summary = {context.printerInfo->GetName(),
                          {},
                          DoubleFromBigEndian(record.mPageWidth_be),
                          DoubleFromBigEndian(record.mPageHeight_be),
                          DoubleFromBigEndian(record.mXDpi_be),
                          DoubleFromBigEndian(record.mYDpi_be),
                          GetDialogUnit(context.bundleIdentifier.Get()),
                          context.pageCount};
    if (record.mPageIsCustom_be) return summary;
    summary.page = ShownPageName(*context.printerInfo, RecordName(record.mPageName));
    return summary;
}

} // namespace

bool DoStyle(DriverContext *context, Handle record) {
    const PageSetupSources sources = {context->pageInfo, context->separations,
                                      &context->printerInfo, context->bundleIdentifier.Get(),
                                      context->sendToPrintQueue};
    PageSetup setup;
    setup.Use(CopyRecord(record), &sources);
    if (!StyleDialog(context->bundle.Get(), setup)) return false;
    const RecordLock lock(record);
    if (!lock.Record()) return false;
    *lock.Record() = setup.Record();
    context->sendToPrintQueue.reset(); // what was confirmed is the user's preference now
    return true;
}

bool DoJob(DriverContext *context, Handle record) {
    const PSHPrint copy = CopyRecord(record);
    CFStringRef applicationID = context->bundleIdentifier.Get();
    CFPreferencesAppSynchronize(applicationID);
    const JobSummary summary = SummaryOf(*context, copy);
    const JobDescription job = {JobDialogTitle(context->bundle.Get()), context->jobName.Get(),
                                copy.mEPSFormat_be ? CFSTR("eps") : CFSTR("ps"), &summary};
    JobChoices choices;
    choices.hotFolder = CopyFoundHotFolder(applicationID);
    choices.firstPage = Int16FromBigEndian(copy.fromPage_be);
    choices.lastPage = Int16FromBigEndian(copy.toPage_be);
    const bool confirmed = JobDialog(applicationID, job, choices);
    const RecordLock lock(record);
    if (!confirmed || !lock.Record()) return false;
    lock.Record()->copies_be = Int16ToBigEndian(1);
    lock.Record()->fromPage_be = Int16ToBigEndian(choices.firstPage);
    lock.Record()->toPage_be = Int16ToBigEndian(choices.lastPage);
    context->hasOutputFileName = static_cast<bool>(choices.fileName);
    context->outputFileName = choices.fileName;
    if (!choices.hotFolder) return true;
    SaveHotFolder(applicationID, choices.hotFolder.Get());
    context->hotFolder = choices.hotFolder;
    return true;
}

Boolean ZELPrStyle(DriverContext *context, Handle record) {
    if (!BeginDialog(context, record)) return false;
    const bool confirmed = DoStyle(context, record);
    if (confirmed) SaveDefaults(context->bundleIdentifier.Get(), CopyRecord(record));
    return ConfirmedOrCancelled(context, confirmed);
}

Boolean ZELPrJob(DriverContext *context, Handle record) {
    return BeginDialog(context, record) && ConfirmedOrCancelled(context, DoJob(context, record));
}
