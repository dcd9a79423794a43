// A print record of any bytes, with printers of every kind: checked, described, fitted, opened as
// EPS.
#include "Common/Src/DocumentOpening.h"
#include "Common/Src/DriverContext.h"
#include "Common/Src/PageOutput.h"
#include "Common/Src/record/JobSettings.h"
#include "Common/Src/record/PageFitting.h"
#include "Common/Src/record/PrintRecord.h"
#include "colour/Separations.h"
#include "fuzz/MemoryFile.h"
#include "ppd/PostscriptPrinterInfo.h"
#include "tests/Common/Src/TestPPD.h"

#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

/// In pixels. The system would take most of the time to clear memory for the rows of wider ones.
constexpr int32_t kWidestPage = 20000;

PostscriptPrinterInfo *MakePrinter(const TestPPD &ppd) {
    const std::string text = ppd.Text();
    MemoryFile file;
    file.Hold(text.data(), text.size());
    return new PostscriptPrinterInfo(file.URL().Get());
}

/// An open driver. What it would read from the user's preferences for each record takes longer than
/// all the rest, and has nothing to do with the record: it is read once.
struct OpenDriver {
    explicit OpenDriver(const TestPPD &ppd) {
        context.printerInfo = MakePrinter(ppd);
        context.bundleIdentifier =
            CFRef<CFStringRef>::Retain(CFSTR("com.zel.PostscriptPrinterDriver"));
        context.jobName = CFRef<CFStringRef>::Retain(CFSTR("Fuzz"));
        context.sendToPrintQueue = false;
        defaults = NewHandle(0);
        SetDefaults(*context.printerInfo, context.bundleIdentifier.Get(), defaults);
    }

    DriverContext context;
    Handle defaults; ///< the record that it makes from nothing
};

/// One for each kind of printer, until the process ends.
std::vector<OpenDriver *> OpenDrivers() {
    std::vector<TestPPD> ppds(4);
    ppds[1].custom = TestPPD::CustomPages();
    ppds[2].pages.clear();
    ppds[3].level = "1";
    std::vector<OpenDriver *> drivers;
    drivers.reserve(ppds.size());
    for (const TestPPD &ppd : ppds)
        drivers.push_back(new OpenDriver(ppd));
    return drivers;
}

Handle HandleOf(const void *bytes, size_t size) {
    Handle handle = NewHandle(static_cast<Size>(size));
    std::memcpy(*handle, bytes, size);
    return handle;
}

void OpenAsEPS(DriverContext *context, Handle handle) {
    if (GetHandleSize(handle) < static_cast<Size>(sizeof(PSHPrint))) return;
    reinterpret_cast<PSHPrint *>(*handle)->mEPSFormat_be = 1;
    if (RecordGeometry(CopyRecord(handle)).widthPixels > kWidestPage) return;
    context->record = handle;
    if (DoOpenDocument(context) == 0) KillDocument(context->mPageOutputSession);
    context->mPageOutputSession = nullptr;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const std::vector<OpenDriver *> &drivers = *new std::vector<OpenDriver *>(OpenDrivers());
    if (size < 4) return 0;
    OpenDriver &driver = *drivers[data[0] % drivers.size()];
    DriverContext *context = &driver.context;
    context->pageInfo = {data[1] * 20, data[2] * 20, data[3] * 2.0, data[1] * 3.0, 32};
    Handle handle = HandleOf(data + 4, size - 4);
    const PostscriptPrinterInfo &printer = *context->printerInfo;
    (void)HPrintIsBad(printer, handle);
    (void)RecordGeometry(CopyRecord(handle));
    (void)DoCopyJobSettings(handle, nullptr);
    SetSuggestions(&printer, handle, &context->pageInfo);
    if (HPrintIsBad(printer, handle) && data[0] >= 0x80) {
        DisposeHandle(handle);
        handle = HandleOf(*driver.defaults, static_cast<size_t>(GetHandleSize(driver.defaults)));
        SetSuggestions(&printer, handle, &context->pageInfo);
    }
    OpenAsEPS(context, handle);
    DisposeHandle(handle);
    return 0;
}
