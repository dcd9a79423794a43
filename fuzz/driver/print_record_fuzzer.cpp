// A print record of any bytes, with printers of every kind: checked, described, fitted, opened as
// EPS.
#include "Common/Src/DocumentOpening.h"
#include "Common/Src/DriverContext.h"
#include "Common/Src/PageOutput.h"
#include "Common/Src/record/JobSettings.h"
#include "Common/Src/record/PageFitting.h"
#include "Common/Src/record/PrintRecord.h"
#include "colour/Separations.h"
#include "ppd/PostscriptPrinterInfo.h"
#include "tests/Common/Src/TestPPD.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <unistd.h>
#include <vector>

namespace {

PostscriptPrinterInfo *MakePrinter(const TestPPD &ppd) {
    char path[] = "/tmp/zel-fuzz-XXXXXX";
    const int file = mkstemp(path);
    const std::string text = ppd.Text();
    if (file < 0 || write(file, text.data(), text.size()) < 0) std::abort();
    close(file);
    const CFRef<CFURLRef> url(CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(path),
        static_cast<CFIndex>(sizeof path - 1), false));
    auto *printer = new PostscriptPrinterInfo(url.Get());
    unlink(path);
    return printer;
}

/// One open driver for each kind of printer.
std::vector<std::unique_ptr<DriverContext>> MakeContexts() {
    std::vector<TestPPD> ppds(4);
    ppds[1].custom = TestPPD::CustomPages();
    ppds[2].pages.clear();
    ppds[3].level = "1";
    std::vector<std::unique_ptr<DriverContext>> contexts;
    for (const TestPPD &ppd : ppds) {
        auto context = std::make_unique<DriverContext>();
        context->printerInfo = MakePrinter(ppd);
        context->bundleIdentifier =
            CFRef<CFStringRef>::Retain(CFSTR("com.zel.PostscriptPrinterDriver"));
        context->jobName = CFRef<CFStringRef>::Retain(CFSTR("Fuzz"));
        contexts.push_back(std::move(context));
    }
    return contexts;
}

void OpenAsEPS(DriverContext *context, Handle handle) {
    if (GetHandleSize(handle) < static_cast<Size>(sizeof(PSHPrint))) return;
    reinterpret_cast<PSHPrint *>(*handle)->mEPSFormat_be = 1;
    context->record = handle;
    if (DoOpenDocument(context) == 0) KillDocument(context->mPageOutputSession);
    context->mPageOutputSession = nullptr;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const std::vector<std::unique_ptr<DriverContext>> contexts = MakeContexts();
    if (size < 4) return 0;
    DriverContext *context = contexts[data[0] % contexts.size()].get();
    context->pageInfo = {data[1] * 20, data[2] * 20, data[3] * 2.0, data[1] * 3.0, 32};
    Handle handle = NewHandle(static_cast<Size>(size - 4));
    std::memcpy(*handle, data + 4, size - 4);
    const PostscriptPrinterInfo &printer = *context->printerInfo;
    (void)HPrintIsBad(printer, handle);
    (void)RecordGeometry(CopyRecord(handle));
    (void)DoCopyJobSettings(handle, nullptr);
    SetSuggestions(&printer, handle, &context->pageInfo);
    if (HPrintIsBad(printer, handle) && data[0] >= 0x80)
        SetDefaults(printer, context->bundleIdentifier.Get(), handle);
    OpenAsEPS(context, handle);
    DisposeHandle(handle);
    return 0;
}
