// What a host needs beyond the classic call sequence: see ZELExtensions.h.
#include "Common/Src/DriverContext.h"
#include "Common/Src/postscript/PrintQueue.h"
#include "Common/Src/record/Preferences.h"
#include "Common/Src/record/PrintRecord.h"
#include "Common/Src/record/RecordSettings.h"
#include "ZELExtensions.h"
#include "dialogs/DialogEnd.h"
#include "ppd/ParserError.h"
#include "ppd/PostscriptPrinterInfo.h"
#include "ppd/PrinterInfoDictionary.h"
#include "support/Bookmark.h"
#include "support/CFText.h"

#include <algorithm>
#include <memory>
#include <platform/Platform.h>
#include <string>
#include <utility>

namespace {

std::unique_ptr<PostscriptPrinterInfo> ReadPrinter(CFURLRef ppd, std::string &error) {
    try {
        return std::make_unique<PostscriptPrinterInfo>(ppd);
    } catch (const PPD::ParserError &parserError) {
        error = parserError.ErrorMessage();
    } catch (...) {
        error = "The printer description could not be read";
    }
    return nullptr;
}

std::unique_ptr<PostscriptPrinterInfo> BuiltIn() {
    return std::make_unique<PostscriptPrinterInfo>(PostscriptPrinterInfo::Chosen::BuiltIn);
}

} // namespace

int32_t ZELPrGetRecordSettings(Handle record, ZELRecordSettings *settings) {
    return GetRecordSettings(record, settings);
}

int32_t ZELPrSetRecordSettings(DriverContext *context, Handle record,
                               const ZELRecordSettings *settings) {
    return SetRecordSettings(context ? context->printerInfo : nullptr, record, settings);
}

int32_t ZELPrOpenWithPrinter(CFBundleRef bundle, CFURLRef ppd, DriverContext **context,
                             CFStringRef *message) {
    if (message) *message = nullptr;
    if (context) *context = nullptr;
    std::string error;
    std::unique_ptr<PostscriptPrinterInfo> printer = ppd ? ReadPrinter(ppd, error) : BuiltIn();
    if (printer) return OpenContext(bundle, std::move(printer), context);
    if (message) *message = TextOfUnknownEncoding(error).Detach();
    return kZELFileNotFound;
}

int32_t ZELPrSetPrinter(DriverContext *context, CFURLRef ppd, CFStringRef *message) {
    if (message) *message = nullptr;
    std::string error;
    std::unique_ptr<PostscriptPrinterInfo> printer = ReadPrinter(ppd, error);
    if (!printer) {
        if (message) *message = TextOfUnknownEncoding(error).Detach();
        return kZELFileNotFound;
    }
    delete context->printerInfo;
    context->printerInfo = printer.release();
    return kZELNoError;
}

void ZELPrSetSendToPrintQueue(DriverContext *context, Boolean send) {
    context->sendToPrintQueue = send != 0;
}

uint64_t ZELPrDocumentLength(DriverContext *context) {
    return context->documentLength;
}

CFDictionaryRef ZELPrCopyPrinter(DriverContext *context, CFURLRef *ppd) {
    const PostscriptPrinterInfo &printer = *context->printerInfo;
    if (ppd) *ppd = CFRef<CFURLRef>::Retain(printer.URL()).Detach();
    try {
        return CreatePrinterInfoDictionary(printer).Detach();
    } catch (...) {
        return nullptr;
    }
}

void ZELPrSetPageCount(DriverContext *context, int32_t pages) {
    context->pageCount = std::max<int32_t>(pages, 0);
}

Boolean ZELPrDialogFailed() {
    return LastDialogFailed();
}

void ZELPrCancelDialog() {
    CancelDialog();
}

Boolean ZELPrUserHasChosenPrinter(DriverContext *context) {
    return HasSavedPPD(context->bundleIdentifier.Get());
}

CFURLRef ZELPrCopyUsersPrinter(DriverContext *context) {
    return CopySavedPPD(context->bundleIdentifier.Get()).Detach();
}

CFURLRef ZELPrCopyUsersHotFolder(DriverContext *context) {
    return CopySavedHotFolder(context->bundleIdentifier.Get()).Detach();
}

Boolean ZELPrUserSendsToPrintQueue(DriverContext *context) {
    return GetSendToDefaultPrintQueue(context->bundleIdentifier.Get());
}

uint32_t ZELPrUsersColourSpace(DriverContext *context) {
    return GetColourSpace(context->bundleIdentifier.Get());
}

Boolean ZELPrSaveDefaults(DriverContext *context, Handle record, CFURLRef ppd, CFURLRef hotFolder,
                          const Boolean *send) {
    CFStringRef application = context->bundleIdentifier.Get();
    if (record && GetHandleSize(record) < static_cast<Size>(sizeof(PSHPrint))) return false;
    const CFRef<CFDataRef> printer = ppd ? BookmarkOf(ppd) : CFRef<CFDataRef>();
    const CFRef<CFDataRef> folder = hotFolder ? BookmarkOf(hotFolder) : CFRef<CFDataRef>();
    if ((ppd && !printer) || (hotFolder && !folder)) return false;
    SavePPDFileLocation(application, printer.Get());
    if (hotFolder) SaveHotFolder(application, hotFolder);
    if (send) SaveSendToDefaultPrintQueue(application, *send != 0);
    if (record) SaveDefaults(application, CopyRecord(record));
    return CFPreferencesAppSynchronize(application);
}

Boolean ZELPrCanShowDialogs() {
    return PlatformHasWindowServer();
}

void ZELPrUseWindows(Boolean use) {
    PlatformUseWindows(use);
}

int32_t ZELPrMoveWithoutReplacing(const char *from, const char *to) {
    return PlatformMoveWithoutReplacing(from, to);
}

int32_t ZELPrInheritRights(const char *from, const char *to) {
    return PlatformInheritRights(from, to);
}

Boolean ZELPrHandToPrintQueue(const char *path) {
    return PrintCopyOfFile(path) == 0;
}

void ZELPrKeepFreedMemory(int32_t bytes) {
    PlatformKeepFreedMemory(bytes);
}
