// The entry points of a session: see ZELPrint.h. The assertion stays in the release build: going on
// without a session would end in a crash of the host later on.
#undef NDEBUG
#include "Common/Src/DocumentOpening.h"
#include "Common/Src/DriverContext.h"
#include "Common/Src/PageOutput.h"
#include "Common/Src/record/JobSettings.h"
#include "Common/Src/record/PageFitting.h"
#include "Common/Src/record/PrintRecord.h"
#include "Common/Src/record/PrinterLoading.h"
#include "ZELPrint.h"
#include "colour/Separations.h"
#include "dialogs/Beep.h"
#include "ppd/PostscriptPrinterInfo.h"
#include <ApplicationServices/ApplicationServices.h>

#include <cassert>
#include <memory>
#include <new>
#include <string_view>
#include <utility>

namespace {

/// Throws an open document away; its file is deleted.
void KillOpenDocument(DriverContext *context) {
    if (context->mPageOutputSession) KillDocument(context->mPageOutputSession);
    context->mPageOutputSession = nullptr;
}

/// Calls the page output layer while the session is good and a document is open; without a
/// document the call is the host's mistake and fails.
template <class Call>
int32_t CallWithDocument(DriverContext *context, Call call) {
    if (context->state != SessionState::Ok) return context->error;
    return LatchResult(context, context->mPageOutputSession ? call(context->mPageOutputSession)
                                                            : int16_t{kZELBadParameter});
}

bool OptionKeyIsHeld() {
    CGEventSourceRef source = CGEventSourceCreate(kCGEventSourceStateCombinedSessionState);
    if (!source) return false;
    CGEventFlags flags = CGEventSourceFlagsState(CGEventSourceGetSourceStateID(source));
    CFRelease(source);
    return (flags & kCGEventFlagMaskAlternate) != 0;
}

/// The work of opening that needs the context: the printer, the user's unless one is given, and the
/// separations to choose from.
void FillContext(DriverContext *context, CFBundleRef bundle,
                 std::unique_ptr<PostscriptPrinterInfo> printer) {
    context->bundle = CFRef<CFBundleRef>::Retain(bundle);
    context->bundleIdentifier = CFRef<CFStringRef>::Retain(CFBundleGetIdentifier(bundle));
    context->jobName = CFRef<CFStringRef>::Retain(CFSTR("Untitled"));
    if (!printer) printer = LoadPrinterInfo(context->bundleIdentifier.Get());
    context->printerInfo = printer.release();
    context->separations = ScanSeparationsFolder();
}

} // namespace

DriverContext::~DriverContext() {
    KillOpenDocument(this);
    delete printerInfo;
    if (separations) DeleteSeparationsList(separations);
}

int32_t LatchResult(DriverContext *context, int32_t result) {
    if (result != kZELNoError && context->state == SessionState::Ok) {
        context->state =
            result == kZELUserCancelled ? SessionState::Cancelled : SessionState::Failed;
        context->error = result;
    }
    return context->error;
}

int32_t OpenContext(CFBundleRef bundle, std::unique_ptr<PostscriptPrinterInfo> printer,
                    DriverContext **outContext) {
    if (!outContext) return kZELBadParameter;
    *outContext = nullptr;
    if (!bundle || !CFBundleGetIdentifier(bundle)) return kZELBadParameter;
    std::unique_ptr<DriverContext> context(new (std::nothrow) DriverContext);
    if (!context) return kZELOutOfMemory;
    try {
        FillContext(context.get(), bundle, std::move(printer));
    } catch (...) {
        return kZELBadParameter;
    }
    *outContext = context.release();
    return kZELNoError;
}

int32_t ZELPrOpen(CFBundleRef bundle, DriverContext **outContext) {
    return OpenContext(bundle, nullptr, outContext);
}

void ZELPrSuggestPage(DriverContext *context, void * /*ignored*/, const ZELPageRecord *page,
                      uint16_t depth) {
    PageInfo_tag &info = context->pageInfo;
    if (depth) info.depth = depth;
    if (!page) return;
    info.widthPixels = page->widthPixels;
    info.heightPixels = page->heightPixels;
    info.widthMM = page->widthMM;
    info.heightMM = page->heightMM;
}

Boolean ZELPrValidate(DriverContext *context, Handle record) {
    context->record = record;
    if (context->state != SessionState::Ok) return false;
    const bool forced = OptionKeyIsHeld();
    if (forced) SoundBeep();
    const PostscriptPrinterInfo &printer = *context->printerInfo;
    if (!forced && !HPrintIsBad(printer, record)) return false;
    CFStringRef applicationID = context->bundleIdentifier.Get();
    SetDefaults(printer, applicationID, record);
    SetSuggestions(&printer, record, &context->pageInfo);
    if (HPrintIsBad(printer, record)) SetDefaults(printer, applicationID, record);
    return true;
}

void ZELPrDefaults(DriverContext *context, Handle record) {
    context->record = record;
    SetDefaults(*context->printerInfo, context->bundleIdentifier.Get(), record);
}

int32_t ZELPrGetInfo(DriverContext * /*context*/, Handle handle, ZELDriverInfo *info) {
    const PSHPrint record = CopyRecord(handle);
    const OutputGeometry geometry = RecordGeometry(record);
    info->result = kZELNoError;
    info->widthPixels = geometry.widthPixels;
    info->heightPixels = geometry.heightPixels;
    info->widthMM = geometry.widthMM;
    info->heightMM = geometry.heightMM;
    info->firstPage = static_cast<uint16_t>(Int16FromBigEndian(record.fromPage_be));
    info->lastPage = static_cast<uint16_t>(Int16FromBigEndian(record.toPage_be));
    info->copies = static_cast<uint16_t>(Int16FromBigEndian(record.copies_be));
    return info->copies;
}

int32_t ZELPrSetJobName(DriverContext *context, void * /*ignored*/, CFStringRef name) {
    context->jobName = CFRef<CFStringRef>::Retain(name);
    return context->error;
}

CFDictionaryRef ZELPrCopyJobSettings(DriverContext *context, Handle record) {
    context->record = record;
    return DoCopyJobSettings(record, context->hotFolder.Get()).Detach();
}

Boolean ZELPrSetJobSettings(DriverContext *context, Handle record, CFDictionaryRef settings) {
    context->record = record;
    return DoSetJobSettings(record, settings, context->hotFolder);
}

void ZELPrJobMerge(DriverContext * /*context*/, Handle source, Handle destination) {
    RecordLock sourceLock(source);
    RecordLock destinationLock(destination);
    const PSHPrint *from = sourceLock.Record();
    PSHPrint *to = destinationLock.Record();
    if (!from || !to) return;
    to->copies_be = from->copies_be;
    to->fromPage_be = from->fromPage_be;
    to->toPage_be = from->toPage_be;
}

int32_t ZELPrOpenDoc(DriverContext *self) {
    if (self->state != SessionState::Ok) return self->error;
    if (self->mPageOutputSession) return LatchResult(self, kZELBadParameter);
    if (LatchResult(self, DoOpenDocument(self)) == kZELNoError)
        assert(self->mPageOutputSession != 0); // NOLINT(modernize-use-nullptr): reported text
    return self->error;
}

int32_t ZELPrOpenPage(DriverContext *context, const void *a, const void *b) {
    return CallWithDocument(context,
                            [=](PageOutputSession *session) { return OpenPage(session, a, b); });
}

int32_t ZELPrPrintBitmap(DriverContext *context, const ZELBand *band, const ZELRect *sourceRect,
                         const ZELRect *destRect) {
    return CallWithDocument(context, [=](PageOutputSession *session) {
        return PrintBits(session, band, sourceRect, destRect);
    });
}

int32_t ZELPrClosePage(DriverContext *context) {
    CallWithDocument(context, [](PageOutputSession *session) { return ClosePage(session); });
    if (context->state != SessionState::Ok && context->mPageOutputSession)
        KillPage(context->mPageOutputSession);
    return context->error;
}

int32_t ZELPrCloseDoc(DriverContext *context) {
    context->documentLength = 0;
    CallWithDocument(context, [context](PageOutputSession *session) {
        context->mPageOutputSession = nullptr; // freed by the call, whatever its result
        return CloseDocument(session, &context->documentLength);
    });
    KillOpenDocument(context);
    return context->error;
}

void ZELPrSetError(DriverContext *context, int32_t code) {
    if (context->state != SessionState::Ok) return;
    context->error = code;
    context->state = SessionState::HostError;
}

int32_t ZELPrErrorString(DriverContext * /*context*/, int32_t code, StringPtr out) {
    // Hosts compare with the second text as it is, misspelling included.
    const std::string_view text = code == kZELUserCancelled ? "Printing cancelled by user"
                                                            : "An error ocurred while printing";
    out[0] = static_cast<unsigned char>(text.size());
    text.copy(reinterpret_cast<char *>(out) + 1, text.size());
    return out[0];
}

int32_t ZELPrClose(DriverContext *context) {
    const int32_t result =
        context->state == SessionState::Cancelled ? int32_t{kZELNoError} : context->error;
    delete context;
    return result;
}
