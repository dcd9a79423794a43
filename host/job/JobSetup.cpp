#include "host/job/JobSetup.h"

#include "host/command/Console.h"
#include "host/command/ExitStatus.h"
#include "host/job/JobTitle.h"
#include "host/job/Media.h"
#include "host/job/OutputStaging.h"
#include "host/job/PageRange.h"
#include "host/job/PlacementPlan.h"
#include "host/separations/Separations.h"
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace {

constexpr double kPointsPerMM = 72 / 25.4;
constexpr int kLongestSide = 1000000; // pixels

std::string AbsolutePath(const std::string &path) {
    char *real = realpath(path.c_str(), nullptr);
    std::string result = real ? real : path;
    free(real);
    return result;
}

/// Splits what -o names into folder and file name.
void SplitOutput(const std::string &output, std::string &folder, std::string &name) {
    const size_t slash = output.rfind('/');
    name = slash == std::string::npos ? output : output.substr(slash + 1);
    if (slash != std::string::npos) folder = slash == 0 ? "/" : output.substr(0, slash);
    if (name.empty() || name == "." || name == "..")
        throw HostError(ExitStatus::Usage, "-o needs the name of a file, not \"" + output + "\"");
}

std::string FolderForQueue() {
    if (access(".", W_OK) == 0) return ".";
    const char *temporary = getenv("TMPDIR");
    return temporary ? temporary : "/tmp";
}

/// Who turns the page by hand has decided how it lies.
PlacementWishes WishesOf(const JobOptions &options) {
    PlacementWishes wishes = options.placement;
    wishes.autoRotate = options.autoRotate.value_or(!options.rotate.value_or(false));
    return wishes;
}

} // namespace

JobSetup::JobSetup(const DriverBundle &bundle, const JobOptions &options,
                   const std::vector<SourceFile> &files)
    : mBundle(bundle), mOptions(options), mFiles(files), mSession(bundle),
      mHandle(sizeof(PSHPrint)), mRecord(mHandle.Get()) {
    if (!options.settings.empty()) mSaved = ReadSettings(options.settings);
    ChoosePrinter();
    FillRecord();
    ApplyOptions();
    RunDialogs();
    if (!options.saveSettings.empty()) SaveSettings();
    FitPage();
    PlanPages();
    PlanColours();
    PlanRaster();
    PlacePages(mPlan, mPrinter, {mRecord.FlipH(), mRecord.FlipV()}, WishesOf(mOptions));
    PlanDestination();
}

void JobSetup::ChoosePrinter() {
    mPPD = mOptions.ppd ? AbsolutePath(*mOptions.ppd) : mSaved.ppd;
    if (!mPPD.empty()) {
        mPrinter = ReadPrinterModel(mBundle, mPPD);
        CFOwner<CFStringRef> message;
        const int32_t code = ZEL_CALL(mBundle, ZELPrSetPrinter)(
            mSession.Context(), MakeFileURL(mPPD, false).Get(), message.Out());
        if (code != kZELNoError)
            throw HostError(ExitStatus::Input,
                            mPPD + ": refused as a PPD file: " + TextOfCFString(message.Get()));
        return;
    }
    try {
        mPrinter = ReadPrinterModel(mBundle, UsersPPD(mBundle));
    } catch (const HostError &) {
        // The driver has said so, and goes on with the built-in printer.
        mPrinter = ReadPrinterModel(mBundle, {});
    }
}

void JobSetup::FillRecord() {
    ZEL_CALL(mBundle, ZELPrDefaults)(mSession.Context(), mHandle.Get());
    if (mSaved.record.empty()) {
        // Holding the Option key down makes this a reset, as in any host.
        (void)ZEL_CALL(mBundle, ZELPrValidate)(mSession.Context(), mHandle.Get());
        return;
    }
    memcpy(*mHandle.Get(), mSaved.record.data(), mSaved.record.size());
    (void)ZEL_CALL(mBundle, ZELPrSetJobSettings)(mSession.Context(), mHandle.Get(),
                                                 mSaved.jobSettings.Get());
}

void JobSetup::ApplyOptions() {
    if (mOptions.eps) mRecord.SetEPS(*mOptions.eps);
    if (mOptions.rotate) mRecord.SetRotated(*mOptions.rotate);
    if (mOptions.flipH) mRecord.SetFlipH(*mOptions.flipH);
    if (mOptions.flipV) mRecord.SetFlipV(*mOptions.flipV);
    if (mOptions.copies) mRecord.SetCopies(*mOptions.copies);
    ApplyColours();
    ApplyPage();
}

void JobSetup::ApplyColours() {
    const bool onlyGray = !mPrinter.builtIn && !mPrinter.colour && !mRecord.EPS();
    if (mOptions.colourSpace)
        mRecord.SetColourSpace(*mOptions.colourSpace);
    else if (mOptions.separation)
        mRecord.SetColourSpace(kZELColourSpaceCMYK);
    else if (onlyGray)
        mRecord.SetColourSpace(kZELColourSpaceGray);
    if (onlyGray && mRecord.ColourSpace() != kZELColourSpaceGray)
        throw HostError(
            ExitStatus::Usage,
            "the printer prints no colour; use --colour-space gray, or print with --eps");
    if (!mOptions.separation) return;
    if (mRecord.ColourSpace() != kZELColourSpaceCMYK)
        throw HostError(ExitStatus::Usage,
                        "--separation makes CMYK; leave out --colour-space, or use cmyk");
    CheckSeparation(mBundle, *mOptions.separation);
    if (!mRecord.SetSeparation(*mOptions.separation))
        throw HostError(ExitStatus::Usage, "the name of the separation is longer than 255 bytes");
}

void JobSetup::ApplyPage() {
    if (mOptions.media) {
        RecordPage page = ChooseMedia(mPrinter, *mOptions.media, mRecord.EPS());
        // A record holds the page as it lies in front of the reader.
        if (page.custom && mRecord.Rotated()) std::swap(page.width, page.height);
        mRecord.SetPage(page);
    }
    if (mOptions.resolution) {
        RecordResolution resolution = ChooseResolution(mPrinter, *mOptions.resolution);
        if (mRecord.Rotated()) std::swap(resolution.x, resolution.y);
        mRecord.SetResolution(resolution);
    }
}

/// The first page's own size, for the page setup's "From Document".
void JobSetup::SuggestDocument() const {
    const ImageSize size = mFiles[0].Describe(0).size;
    const auto goodDpi = [](double dpi) { return dpi >= 10 && dpi <= 10000 ? dpi : 72; };
    const ZELPageRecord page = {size.width, size.height, size.width / goodDpi(size.dpiX) * 25.4,
                                size.height / goodDpi(size.dpiY) * 25.4};
    ZEL_CALL(mBundle, ZELPrSuggestPage)(mSession.Context(), nullptr, &page, 0);
}

void JobSetup::RunDialogs() {
    const auto run = [this](Boolean (*dialog)(DriverContext *, Handle), const char *name) {
        if (mBundle.Require(dialog, name)(mSession.Context(), mHandle.Get())) return;
        throw HostError(ExitStatus::Cancelled, "cancelled in the dialog; nothing was printed");
    };
    if ((mOptions.pageSetup || mOptions.printDialog) && !getenv("DISPLAY"))
        throw HostError(ExitStatus::Usage,
                        "there is no window system for a dialog; choose with options instead");
    if (mOptions.pageSetup) {
        SuggestDocument();
        const std::string before = UsersPPD(mBundle);
        run(mBundle.Functions().ZELPrStyle, "ZELPrStyle");
        const std::string after = UsersPPD(mBundle);
        if (after != before) {
            // The user has chosen another printer in the dialog; the driver uses it by now.
            mPPD.clear();
            mPrinter = ReadPrinterModel(mBundle, after);
        }
    }
    if (!mOptions.printDialog) return;
    mPlan.title = mOptions.title ? CleanTitle(*mOptions.title) : TitleOfFile(mFiles[0].Path());
    (void)ZEL_CALL(mBundle, ZELPrSetJobName)(mSession.Context(), nullptr,
                                             MakeCFString(mPlan.title).Get());
    run(mBundle.Functions().ZELPrJob, "ZELPrJob");
    const CFOwner<CFDictionaryRef> chosen(
        ZEL_CALL(mBundle, ZELPrCopyJobSettings)(mSession.Context(), mHandle.Get()));
    mDialogFolder = OutputFolderOf(chosen.Get());
}

void JobSetup::SaveSettings() const {
    if (mOptions.hotFolder) SetOutputFolder(mSession, mHandle.Get(), *mOptions.hotFolder);
    const CFOwner<CFDictionaryRef> settings(
        ZEL_CALL(mBundle, ZELPrCopyJobSettings)(mSession.Context(), mHandle.Get()));
    WriteSettings(mOptions.saveSettings, mHandle.Get(), settings.Get(), mPPD,
                  mOptions.queue ? mOptions.queue : mSaved.queue);
}

/// Makes the record one that the driver prints as it reads: a named page gets its true size, and
/// the turn of an EPS page is taken off it (its bounding box would stay that of the unturned page).
void JobSetup::FitPage() {
    RecordPage page = mRecord.Page();
    mPlan.eps = mRecord.EPS();
    mPlan.rotated = mRecord.Rotated();
    mPlan.turned = mPlan.eps && mPlan.rotated;
    if (!page.custom) {
        const PrinterPage *named = mPrinter.FindPage(page.name);
        if (!named && !mPlan.eps)
            throw HostError(ExitStatus::Usage, "the printer has no page called \"" + page.name +
                                                   "\"; choose one with --media");
        if (named) page = {named->name, false, named->Width(), named->Height()};
        if (named && mPlan.rotated && !mPlan.turned) std::swap(page.width, page.height);
    } else if (mPlan.turned) {
        std::swap(page.width, page.height);
    }
    if (mPlan.turned) {
        mRecord.SetRotated(false);
        // The driver mirrors after it has turned, zelprint before.
        const bool flipH = mRecord.FlipH();
        mRecord.SetFlipH(mRecord.FlipV());
        mRecord.SetFlipV(flipH);
        RecordResolution resolution = mRecord.Resolution();
        std::swap(resolution.x, resolution.y);
        mRecord.SetResolution(resolution);
    }
    mRecord.SetPage(page);
    if (!mPlan.eps && !mPrinter.level2)
        throw HostError(ExitStatus::Usage, "the printer does not understand PostScript Level 2; "
                                           "choose another PPD file, or print with --eps");
    if (page.custom && !mPlan.eps && !mPrinter.custom)
        throw HostError(ExitStatus::Usage,
                        "the printer has no custom page sizes; choose a page with --media");
}

void JobSetup::PlanPages() {
    ZELDriverInfo info = {};
    (void)ZEL_CALL(mBundle, ZELPrGetInfo)(mSession.Context(), mHandle.Get(), &info);
    const PageRange range = mOptions.pageRange ? PageRange::Parse(*mOptions.pageRange)
                                               : PageRange(info.firstPage, info.lastPage);
    mPlan.copies = std::max<int>(1, info.copies);
    int number = 0;
    for (const SourceFile &file : mFiles)
        for (int page = 0; page < file.PageCount(); ++page)
            if (range.Contains(++number)) mPlan.pages.push_back({&file, page, {}});
    if (mPlan.pages.empty())
        throw HostError(ExitStatus::Usage, "none of the " + std::to_string(number) +
                                               " pages is in the range asked for; correct -P");
}

void JobSetup::PlanColours() {
    mPlan.colourSpace = mRecord.ColourSpace();
    mPlan.pixels =
        mPlan.colourSpace == kZELColourSpaceGray ? DocumentPixels::Darkness : DocumentPixels::XRGB;
    if (mPlan.colourSpace != kZELColourSpaceCMYK) return;
    mPlan.separation = mRecord.Separation();
    if (mPlan.separation == "Standard") mPlan.separation.clear();
    const auto isCMYK = [](const PageReference &reference) {
        return reference.file->Kind() != FileKind::PDF &&
               reference.file->Describe(reference.page).kind == PixelKind::CMYK;
    };
    const auto count = std::count_if(mPlan.pages.begin(), mPlan.pages.end(), isCMYK);
    if (count == static_cast<std::ptrdiff_t>(mPlan.pages.size()))
        mPlan.pixels = DocumentPixels::CMYK;
    else if (count > 0)
        // One document has one kind of pixels.
        Complain("CMYK and other images in one document: the CMYK ones are converted and "
                 "separated anew; print them by themselves to keep them as they are");
}

void JobSetup::PlanRaster() {
    RecordPage page = mRecord.Page();
    RecordResolution resolution = mRecord.Resolution();
    const auto goodDpi = [](double dpi) { return dpi >= 10 && dpi <= 10000; };
    if (!goodDpi(resolution.x) || !goodDpi(resolution.y))
        throw HostError(ExitStatus::Usage, "the resolution \"" + resolution.name +
                                               "\" is not one of 10 to 10000 dpi; choose another "
                                               "with --resolution");
    const double width = page.width * resolution.x / 72;
    const double height = page.height * resolution.y / 72;
    if (!(width >= 1 && height >= 1 && width <= kLongestSide && height <= kLongestSide))
        throw HostError(ExitStatus::Usage,
                        "the page has no printable area of a sensible size; choose another with "
                        "--media");
    mPlan.grid.width = static_cast<int>(width);
    mPlan.grid.height = static_cast<int>(height);
    AvoidShortGroup(mPlan.grid.width, mPlan.grid.height, ComponentsOf(mPlan.colourSpace));
    // The driver truncates; half a pixel more keeps its result where it is meant to be.
    if (mPlan.grid.width != static_cast<int>(width))
        resolution.x = (mPlan.grid.width + 0.5) * 72 / page.width;
    if (mPlan.grid.height != static_cast<int>(height))
        resolution.y = (mPlan.grid.height + 0.5) * 72 / page.height;
    mRecord.SetResolution(resolution);
    mPlan.grid.dpiX = mPlan.grid.width * 72 / page.width;
    mPlan.grid.dpiY = mPlan.grid.height * 72 / page.height;
    mPlan.widthMM = page.width / kPointsPerMM;
    mPlan.heightMM = page.height / kPointsPerMM;
    mPlan.media = page;
    mPlan.resolution = resolution;
    const ZELPageRecord record = {mPlan.grid.width, mPlan.grid.height, mPlan.widthMM,
                                  mPlan.heightMM};
    const uint16_t depth = mPlan.pixels == DocumentPixels::CMYK   ? kZELFormatCMYK32
                           : mPlan.pixels == DocumentPixels::XRGB ? kZELFormatXRGB32
                                                                  : kZELFormatGray8;
    ZEL_CALL(mBundle, ZELPrSuggestPage)(mSession.Context(), nullptr, &record, depth);
}

void JobSetup::PlanDestination() {
    if (mOptions.title && !IsUTF8(*mOptions.title))
        throw HostError(ExitStatus::Usage, "the title is not UTF-8; correct -t or the locale");
    mPlan.title = mOptions.title ? CleanTitle(*mOptions.title) : TitleOfFile(mFiles[0].Path());
    if (mOptions.hotFolder) mPlan.folder = *mOptions.hotFolder;
    if (mOptions.output) {
        SplitOutput(*mOptions.output, mPlan.folder, mPlan.name);
        if (mPlan.folder.empty()) mPlan.folder = ".";
        const bool extended =
            mPlan.name.size() > 4 && mPlan.name.compare(mPlan.name.size() - 4, 4, ".eps") == 0;
        if (mPlan.eps && !extended) mPlan.name += ".eps";
        CheckReplaceable(mPlan.folder + "/" + mPlan.name);
        // EPS pages are named after the first.
        if (mPlan.eps) mPlan.title = TitleOfFile(mPlan.name);
    }
    if (mPlan.folder.empty()) mPlan.folder = mDialogFolder;
    if (mPlan.folder.empty()) mPlan.folder = OutputFolderOf(mSaved.jobSettings.Get());
    if (mPlan.folder.empty()) mPlan.folder = UsersHotFolder(mBundle);
    const std::optional<bool> asked = mOptions.queue ? mOptions.queue : mSaved.queue;
    const bool users = CFPreferencesGetAppBooleanValue(CFSTR("SendToDefaultPrintQueue"),
                                                       mBundle.Identifier(), nullptr);
    mPlan.queue = asked.value_or(users && !mPlan.eps);
    if (mPlan.queue && mPlan.eps)
        throw HostError(ExitStatus::Usage,
                        "an EPS file is no print job; leave out --queue or --eps");
    // Only a document that has been checked goes to the queue, so the driver must not send it.
    ZEL_CALL(mBundle, ZELPrSetSendToPrintQueue)(mSession.Context(), false);
    if (mPlan.folder.empty() && mPlan.queue) mPlan.folder = FolderForQueue();
    if (mPlan.folder.empty())
        throw HostError(ExitStatus::Usage, "there is no saved hot folder; say where the document "
                                           "goes with --hot-folder DIR or -o FILE");
    (void)ZEL_CALL(mBundle, ZELPrSetJobName)(mSession.Context(), nullptr,
                                             MakeCFString(mPlan.title).Get());
}
