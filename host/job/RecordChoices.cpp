#include "host/job/RecordChoices.h"

#include "host/command/ExitStatus.h"
#include "host/driver/ProgramPath.h"
#include "host/job/Destination.h"
#include "host/job/Media.h"
#include "host/job/Settings.h"
#include "host/separations/Separations.h"
#include <cstring>
#include <utility>

namespace {

struct ChosenPrinter {
    PrinterModel model;
    std::string ppd; ///< chosen for this job; empty: the user's
};

ChosenPrinter UsePrinter(const DriverSession &session, const std::string &ppd) {
    ChosenPrinter printer = {ReadPrinterModel(session.Bundle(), ppd), ppd};
    CFOwner<CFStringRef> message;
    const int32_t code = ZEL_CALL(session.Bundle(), ZELPrSetPrinter)(
        session.Context(), MakeFileURL(ppd, false).Get(), message.Out());
    if (code != kZELNoError)
        throw HostError(ExitStatus::Input,
                        ppd + ": refused as a PPD file: " + TextOfCFString(message.Get()));
    return printer;
}

ChosenPrinter UsersPrinter(const DriverSession &session) {
    try {
        return {ReadPrinterModel(session.Bundle(), session.UsersPPD()), {}};
    } catch (const HostError &) {
        // The driver has said so, and goes on with the built-in printer.
        return {ReadPrinterModel(session.Bundle(), {}), {}};
    }
}

ChosenPrinter ChoosePrinter(const DriverSession &session, const JobOptions &options,
                            const SavedSettings &saved) {
    std::string ppd = saved.ppd;
    if (options.ppd) {
        ppd = RealPath(*options.ppd);
        if (ppd.empty()) ppd = *options.ppd;
    }
    return ppd.empty() ? UsersPrinter(session) : UsePrinter(session, ppd);
}

void FillRecord(const DriverSession &session, const SavedSettings &saved, Handle record) {
    const DriverBundle &bundle = session.Bundle();
    ZEL_CALL(bundle, ZELPrDefaults)(session.Context(), record);
    if (saved.record.empty()) {
        // Holding the Option key down makes this a reset, as in any host.
        (void)ZEL_CALL(bundle, ZELPrValidate)(session.Context(), record);
        return;
    }
    memcpy(*record, saved.record.data(), saved.record.size());
    (void)ZEL_CALL(bundle, ZELPrSetJobSettings)(session.Context(), record, saved.jobSettings.Get());
}

void ApplyColours(const DriverBundle &bundle, const JobOptions &options,
                  const PrinterModel &printer, Record &record) {
    const bool onlyGray = !printer.builtIn && !printer.colour && !record.EPS();
    if (options.colourSpace)
        record.SetColourSpace(*options.colourSpace);
    else if (options.separation)
        record.SetColourSpace(kZELColourSpaceCMYK);
    else if (onlyGray)
        record.SetColourSpace(kZELColourSpaceGray);
    if (onlyGray && record.ColourSpace() != kZELColourSpaceGray)
        throw HostError(
            ExitStatus::Usage,
            "the printer prints no colour; use --colour-space gray, or print with --eps");
    if (!options.separation) return;
    if (record.ColourSpace() != kZELColourSpaceCMYK)
        throw HostError(ExitStatus::Usage,
                        "--separation makes CMYK; leave out --colour-space, or use cmyk");
    CheckSeparation(bundle, *options.separation);
    if (!record.SetSeparation(*options.separation))
        throw HostError(ExitStatus::Usage, "the name of the separation is longer than 255 bytes");
}

void ApplyPage(const JobOptions &options, const PrinterModel &printer, Record &record) {
    if (options.media) {
        RecordPage page = ChooseMedia(printer, *options.media, record.EPS());
        // A record holds the page as it lies in front of the reader.
        if (page.custom && record.Rotated()) std::swap(page.width, page.height);
        record.SetPage(page);
    }
    if (options.resolution) {
        RecordResolution resolution = ChooseResolution(printer, *options.resolution);
        if (record.Rotated()) std::swap(resolution.x, resolution.y);
        record.SetResolution(resolution);
    }
}

void ApplyOptions(const DriverBundle &bundle, const JobOptions &options,
                  const PrinterModel &printer, Record &record) {
    if (options.eps) record.SetEPS(*options.eps);
    if (options.rotate) record.SetRotated(*options.rotate);
    if (options.flipH) record.SetFlipH(*options.flipH);
    if (options.flipV) record.SetFlipV(*options.flipV);
    if (options.copies) record.SetCopies(*options.copies);
    ApplyColours(bundle, options, printer, record);
    ApplyPage(options, printer, record);
}

/// The first page's own size, for the page setup's "From Document".
void SuggestDocument(const DriverSession &session, const SourceFile &first) {
    const ImageSize size = first.Describe(0).size;
    const auto goodDpi = [](double dpi) { return IsGoodDpi(dpi) ? dpi : 72; };
    const ZELPageRecord page = {size.width, size.height, size.width / goodDpi(size.dpiX) * 25.4,
                                size.height / goodDpi(size.dpiY) * 25.4};
    ZEL_CALL(session.Bundle(), ZELPrSuggestPage)(session.Context(), nullptr, &page, 0);
}

[[noreturn]] void ThrowCancelled() {
    throw HostError(ExitStatus::Cancelled, "cancelled in the dialog; nothing was printed");
}

void RunPageSetup(const DriverSession &session, const SourceFile &first, Handle record,
                  ChosenPrinter &printer) {
    SuggestDocument(session, first);
    const std::string before = session.UsersPPD();
    if (!ZEL_CALL(session.Bundle(), ZELPrStyle)(session.Context(), record)) ThrowCancelled();
    const std::string after = session.UsersPPD();
    // The user has chosen another printer in the dialog; the driver uses it by now.
    if (after != before) printer = {ReadPrinterModel(session.Bundle(), after), {}};
}

/// Returns the folder chosen there, if any.
std::string RunPrintDialog(const DriverSession &session, const std::string &title, Handle record) {
    const DriverBundle &bundle = session.Bundle();
    (void)ZEL_CALL(bundle, ZELPrSetJobName)(session.Context(), nullptr, MakeCFString(title).Get());
    if (!ZEL_CALL(bundle, ZELPrJob)(session.Context(), record)) ThrowCancelled();
    const CFOwner<CFDictionaryRef> chosen(
        ZEL_CALL(bundle, ZELPrCopyJobSettings)(session.Context(), record));
    return OutputFolderOf(chosen.Get());
}

void CheckDialogs(const DriverBundle &bundle, const JobOptions &options) {
    if (!options.pageSetup && !options.printDialog) return;
    if (!ZEL_CALL(bundle, ZELPrCanShowDialogs)())
        throw HostError(ExitStatus::Usage,
                        "there is no window system for a dialog; choose with options instead");
}

void SaveSettings(const DriverSession &session, const JobOptions &options, Handle record,
                  const std::string &ppd, std::optional<bool> queue) {
    if (options.hotFolder) SetOutputFolder(session, record, *options.hotFolder);
    const CFOwner<CFDictionaryRef> settings(
        ZEL_CALL(session.Bundle(), ZELPrCopyJobSettings)(session.Context(), record));
    WriteSettings(options.saveSettings, record, settings.Get(), ppd, queue);
}

} // namespace

RecordChoices ChooseRecord(const DriverSession &session, const JobOptions &options,
                           const SourceFile &first, Handle handle) {
    SavedSettings saved;
    if (!options.settings.empty()) saved = ReadSettings(options.settings);
    ChosenPrinter printer = ChoosePrinter(session, options, saved);
    FillRecord(session, saved, handle);
    Record record(handle);
    ApplyOptions(session.Bundle(), options, printer.model, record);
    CheckDialogs(session.Bundle(), options);
    if (options.pageSetup) RunPageSetup(session, first, handle, printer);
    std::string folder;
    if (options.printDialog) folder = RunPrintDialog(session, ChooseTitle(options, first), handle);
    if (folder.empty()) folder = OutputFolderOf(saved.jobSettings.Get());
    const std::optional<bool> queue = options.queue ? options.queue : saved.queue;
    if (!options.saveSettings.empty()) SaveSettings(session, options, handle, printer.ppd, queue);
    return {std::move(printer.model), std::move(folder), queue};
}
