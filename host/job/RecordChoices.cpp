#include "host/job/RecordChoices.h"

#include "host/driver/ProgramPath.h"
#include "host/job/AutoMedia.h"
#include "host/job/Dialogs.h"
#include "host/job/JobTitle.h"
#include "host/job/Media.h"
#include "host/job/PageSet.h"
#include "host/job/RasterPlan.h"
#include "host/job/Replacement.h"
#include "host/job/SettingsFile.h"
#include "host/separations/Separations.h"
#include "host/terminal/Console.h"
#include "host/terminal/ExitStatus.h"
#include <algorithm>
#include <cstring>
#include <numeric>
#include <unistd.h>
#include <utility>

namespace {

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

/// The driver would take a colour space that nobody knows for ink.
void CheckColourSpace(const std::string &settings, const Record &record) {
    if (record.ColourSpace() > kZELColourSpaceRGB)
        throw HostError(ExitStatus::Input, kAboutSettings,
                        settings + ": its colour space is none that the driver knows; "
                                   "make the settings again with --save-settings");
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

/// A page for what is printed; to be asked when everything else has been chosen.
void ApplyAutoMedia(const DriverSession &session, const JobOptions &options,
                    const std::vector<SourceFile> &files, const PrinterModel &printer,
                    Handle handle) {
    Record record(session.Bundle(), handle);
    DocumentSize size = SizeOfDocument(files, PagesAskedFor(session, options, handle));
    // No page is in the range, which is told when the pages are chosen.
    if (size.width <= 0) return;
    if (record.Rotated()) std::swap(size.width, size.height);
    RecordPage page = NearestMedia(printer, size, record.EPS());
    if (page.custom && record.Rotated()) std::swap(page.width, page.height);
    record.SetPage(page);
}

void ApplyPage(const JobOptions &options, const PrinterModel &printer, Record &record) {
    if (options.media && *options.media != kAutoMedia) {
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

/// Who types the size of one of the printer's pages into the dialog gets that page, with the two
/// decimals that were typed; the page is printed in its own size.
void TakeSizeOfNamedPage(const PrinterModel &printer, Record &record) {
    RecordPage chosen = record.Page();
    const auto page = std::find_if(printer.pages.begin(), printer.pages.end(),
                                   [&](const PrinterPage &p) { return p.name == chosen.name; });
    if (chosen.custom || page == printer.pages.end()) return;
    chosen.width = record.Rotated() ? page->Height() : page->Width();
    chosen.height = record.Rotated() ? page->Width() : page->Height();
    record.SetPage(chosen);
}

/// The printer that the job is to be repeated with; `ppd` is the one before the dialog.
std::optional<std::string> RunPageSetup(const DriverSession &session, const SourceFile &first,
                                        std::optional<bool> queue, Handle record,
                                        const std::optional<std::string> &ppd) {
    const DriverBundle &bundle = session.Bundle();
    SuggestDocument(session, first);
    if (queue) ZEL_CALL(bundle, ZELPrSetSendToPrintQueue)(session.Context(), *queue);
    const std::string before = PrinterOf(session).ppd;
    RunDialog(session, ZEL_CALL(bundle, ZELPrStyle), record);
    const SessionPrinter chosen = PrinterOf(session);
    Record confirmed(bundle, record);
    TakeSizeOfNamedPage(chosen.model, confirmed);
    const std::string &after = chosen.ppd;
    if (after == before) return ppd;
    if (!after.empty() && access(after.c_str(), R_OK) != 0)
        Complain(after + ": it has gone since it was chosen; this job is still printed with it");
    return after;
}

/// Fills in what the dialog shows of the options.
void SetPageRange(const JobOptions &options, Record &record) {
    if (!options.pageRange) return;
    const auto range = PageSet::Parse(*options.pageRange).ForDialog();
    if (!range)
        throw HostError(ExitStatus::Usage,
                        "the print dialog knows one range of pages up to 999; give -P one, or "
                        "leave it out");
    record.SetPages(range->first, range->second);
}

int PageCountOf(const std::vector<SourceFile> &files) {
    return std::accumulate(files.begin(), files.end(), 0, [](int pages, const SourceFile &file) {
        return pages + file.PageCount();
    });
}

/// Returns the folder chosen there, if any.
std::string RunPrintDialog(const DriverSession &session, const JobOptions &options,
                           const std::vector<SourceFile> &files, Handle handle) {
    const DriverBundle &bundle = session.Bundle();
    const std::string title = ChooseTitle(options.title, files[0].Path());
    ZEL_CALL(bundle, ZELPrSetPageCount)(session.Context(), PageCountOf(files));
    Record record(bundle, handle);
    SetPageRange(options, record);
    (void)ZEL_CALL(bundle, ZELPrSetJobName)(session.Context(), nullptr, MakeCFString(title).Get());
    const int copies = record.Copies();
    RunDialog(session, ZEL_CALL(bundle, ZELPrJob), handle);
    record.SetCopies(copies); // the driver's dialog has none and sets 1
    const CFOwner<CFDictionaryRef> chosen(
        ZEL_CALL(bundle, ZELPrCopyJobSettings)(session.Context(), handle));
    return OutputFolderOf(chosen.Get());
}

void SaveSettings(const DriverSession &session, const JobOptions &options, Handle record,
                  const std::optional<std::string> &ppd, std::optional<bool> queue) {
    if (options.hotFolder) SetOutputFolder(session, record, *options.hotFolder);
    const CFOwner<CFDictionaryRef> settings(
        ZEL_CALL(session.Bundle(), ZELPrCopyJobSettings)(session.Context(), record));
    if (options.hotFolder && OutputFolderOf(settings.Get()).empty())
        throw HostError(ExitStatus::Output, *options.hotFolder + " cannot be kept in the settings: "
                                                                 "not every folder above it can be "
                                                                 "looked at");
    CheckSettingsMayReplace(options.saveSettings, options.files, options.force);
    WriteSettings(options.saveSettings, record, settings.Get(), ppd, queue);
}

} // namespace

std::optional<std::string> PPDOfJob(const JobOptions &options) {
    if (options.builtInPrinter) return std::string();
    if (!options.ppd && options.settings.empty()) return std::nullopt;
    if (!options.ppd) return ReadSettings(options.settings).ppd;
    const std::string path = RealPath(*options.ppd);
    return path.empty() ? *options.ppd : path;
}

RecordChoices ChooseRecord(const DriverSession &session, const JobOptions &options,
                           const std::vector<SourceFile> &files, Handle handle) {
    SavedSettings saved;
    if (!options.settings.empty()) saved = ReadSettings(options.settings);
    FillRecord(session, saved, handle);
    Record record(session.Bundle(), handle);
    if (!saved.record.empty()) CheckColourSpace(options.settings, record);
    const PrinterModel printer = PrinterOf(session).model;
    ApplyOptions(session.Bundle(), options, printer, record);
    if (options.media == kAutoMedia) ApplyAutoMedia(session, options, files, printer, handle);
    std::optional<std::string> ppd = PPDOfJob(options);
    std::optional<bool> queue = options.queue ? options.queue : saved.queue;
    if (options.pageSetup) {
        ppd = RunPageSetup(session, files[0], queue, handle, ppd);
        queue.reset(); // what was confirmed there is what the user has chosen now
    }
    std::string folder;
    if (options.printDialog) folder = RunPrintDialog(session, options, files, handle);
    if (folder.empty()) folder = OutputFolderOf(saved.jobSettings.Get());
    if (!options.saveSettings.empty()) SaveSettings(session, options, handle, ppd, queue);
    return {PrinterOf(session).model, std::move(folder), queue};
}
