#include "host/job/RasterPlan.h"

#include "host/job/ImageLimits.h"
#include "host/job/PageSet.h"
#include "host/separations/DriverSeparation.h"
#include "host/terminal/Console.h"
#include "host/terminal/ExitStatus.h"
#include <algorithm>
#include <utility>

namespace {

constexpr double kPointsPerMM = 72 / 25.4;
constexpr int kLongestSide = 1000000; // pixels

/// The driver mirrors after it has turned, zelprint before.
void TakeTurnOff(Record &record) {
    record.SetRotated(false);
    const bool flipH = record.FlipH();
    record.SetFlipH(record.FlipV());
    record.SetFlipV(flipH);
    RecordResolution resolution = record.Resolution();
    std::swap(resolution.x, resolution.y);
    record.SetResolution(resolution);
}

RecordPage TruePage(const PrinterModel &printer, const PaperPlan &plan, RecordPage page) {
    if (page.custom) {
        if (plan.turned) std::swap(page.width, page.height);
        return page;
    }
    const PrinterPage *named = printer.FindPage(page.name);
    if (!named && !plan.eps)
        throw HostError(ExitStatus::Usage, "the printer has no page called \"" + page.name +
                                               "\"; choose one with --media");
    if (!named) return page;
    page = {named->name, false, named->Width(), named->Height()};
    if (plan.rotated && !plan.turned) std::swap(page.width, page.height);
    return page;
}

bool IsDrawn(const PageReference &page) {
    return page.file->Kind() == FileKind::PDF;
}

/// One document has one kind of pixels: ink if any page comes in ink, so that this stays as it is.
void ChoosePixels(const DriverBundle &bundle, const JobOptions &options,
                  const std::vector<PageReference> &pages, ColourPlan &plan) {
    const auto isInk = [&options](const PageReference &page) {
        return IsDrawn(page) ? !options.separatePDF
                             : page.file->Describe(page.page).kind == PixelKind::CMYK;
    };
    const auto count = std::count_if(pages.begin(), pages.end(), isInk);
    if (count == 0) return;
    plan.pixels = DocumentPixels::CMYK;
    if (count == static_cast<std::ptrdiff_t>(pages.size())) return;
    const auto separation = std::make_shared<DriverSeparation>(bundle, plan.separation);
    plan.separate = [separation](const uint8_t *light, size_t pixels, uint8_t *ink) {
        separation->Separate(light, pixels, ink);
    };
}

/// Who draws in ink has to use the document's separation; who draws ink in light, and not as a
/// press would, has to know how.
bool NeedsInkProfile(const JobOptions &options, DocumentPixels pixels) {
    return pixels == DocumentPixels::CMYK ||
           (pixels == DocumentPixels::XRGB && options.pdf.look == CMYKLook::Plain);
}

std::shared_ptr<const InkProfile> ProfileOf(const DriverBundle &bundle, const std::string &name) {
    const DriverSeparation separation(bundle, name);
    return std::make_shared<InkProfile>(
        MakeInkProfile([&separation](const uint8_t *light, size_t count, uint8_t *ink) {
            separation.Separate(light, count, ink);
        }));
}

/// What the record alone tells.
ColourPlan BeginColours(const Record &record) {
    ColourPlan plan;
    plan.colourSpace = record.ColourSpace();
    if (plan.colourSpace == kZELColourSpaceGray) plan.pixels = DocumentPixels::Darkness;
    if (plan.colourSpace == kZELColourSpaceCMYK) plan.separation = record.Separation();
    if (plan.separation == "Standard") plan.separation.clear();
    return plan;
}

ZELDriverInfo InfoOf(const DriverSession &session, Handle record) {
    ZELDriverInfo info = {};
    (void)ZEL_CALL(session.Bundle(), ZELPrGetInfo)(session.Context(), record, &info);
    return info;
}

} // namespace

PaperPlan FitPaper(const PrinterModel &printer, Record &record) {
    PaperPlan plan;
    plan.eps = record.EPS();
    plan.rotated = record.Rotated();
    plan.turned = plan.eps && plan.rotated;
    const RecordPage page = TruePage(printer, plan, record.Page());
    if (plan.turned) TakeTurnOff(record);
    record.SetPage(page);
    if (!plan.eps && !printer.level2)
        throw HostError(ExitStatus::Usage, "the printer does not understand PostScript Level 2; "
                                           "choose another PPD file, or print with --eps");
    if (page.custom && !plan.eps && !printer.custom)
        throw HostError(ExitStatus::Usage,
                        "the printer has no custom page sizes; choose a page with --media");
    return plan;
}

PageSet PagesAskedFor(const DriverSession &session, const JobOptions &options, Handle record) {
    // In the print dialog the user has confirmed a range, which -P has only filled in.
    if (options.pageRange && !options.printDialog) return PageSet::Parse(*options.pageRange);
    const ZELDriverInfo info = InfoOf(session, record);
    return {info.firstPage, info.lastPage};
}

PageChoice ChoosePages(const DriverSession &session, const JobOptions &options,
                       const std::vector<SourceFile> &files, Handle record) {
    const PageSet range = PagesAskedFor(session, options, record);
    PageChoice choice;
    choice.copies = std::max<int>(1, InfoOf(session, record).copies);
    choice.allowDamaged = options.allowDamaged;
    int number = 0;
    for (const SourceFile &file : files)
        for (int page = 0; page < file.PageCount(); ++page)
            if (range.Contains(++number)) choice.pages.push_back({&file, page, {}});
    if (choice.pages.empty())
        throw HostError(ExitStatus::Usage, "none of the " + std::to_string(number) +
                                               " pages is in the range asked for; correct -P");
    if (!options.allowLarge) CheckImageSizes(choice.pages);
    return choice;
}

std::shared_ptr<const InkProfile> PrepareInks(const DriverBundle &bundle, const JobOptions &options,
                                              const Record &record,
                                              const std::vector<SourceFile> &files) {
    const auto isDrawn = [](const SourceFile &file) { return file.Kind() == FileKind::PDF; };
    ColourPlan plan = BeginColours(record);
    if (plan.colourSpace == kZELColourSpaceCMYK && !options.separatePDF)
        plan.pixels = DocumentPixels::CMYK;
    if (!NeedsInkProfile(options, plan.pixels) || std::none_of(files.begin(), files.end(), isDrawn))
        return nullptr;
    return ProfileOf(bundle, plan.separation);
}

ColourPlan PlanColours(const DriverBundle &bundle, const JobOptions &options, const Record &record,
                       const std::vector<PageReference> &pages,
                       std::shared_ptr<const InkProfile> prepared) {
    ColourPlan plan = BeginColours(record);
    if (plan.colourSpace == kZELColourSpaceCMYK) ChoosePixels(bundle, options, pages, plan);
    if (NeedsInkProfile(options, plan.pixels) && std::any_of(pages.begin(), pages.end(), IsDrawn))
        plan.inks = prepared ? std::move(prepared) : ProfileOf(bundle, plan.separation);
    return plan;
}

RasterPlan PlanRaster(Record &record, uint32_t colourSpace) {
    RasterPlan plan;
    plan.media = record.Page();
    plan.resolution = record.Resolution();
    RecordResolution &dpi = plan.resolution;
    if (!IsGoodDpi(dpi.x) || !IsGoodDpi(dpi.y))
        throw HostError(ExitStatus::Usage, "the resolution \"" + dpi.name + "\" is not one of " +
                                               RangeOfDpi() + "; choose another with --resolution");
    const double width = plan.media.width * dpi.x / 72;
    const double height = plan.media.height * dpi.y / 72;
    if (!(width >= 1 && height >= 1 && width <= kLongestSide && height <= kLongestSide))
        throw HostError(ExitStatus::Usage,
                        "the page has no printable area of a sensible size; choose another with "
                        "--media");
    plan.grid.width = static_cast<int>(width);
    plan.grid.height = static_cast<int>(height);
    AvoidShortGroup(plan.grid.width, plan.grid.height, ComponentsOf(colourSpace));
    // The driver truncates; half a pixel more keeps its result where it is meant to be.
    if (plan.grid.width != static_cast<int>(width))
        dpi.x = (plan.grid.width + 0.5) * 72 / plan.media.width;
    if (plan.grid.height != static_cast<int>(height))
        dpi.y = (plan.grid.height + 0.5) * 72 / plan.media.height;
    record.SetResolution(dpi);
    plan.grid.dpiX = plan.grid.width * 72 / plan.media.width;
    plan.grid.dpiY = plan.grid.height * 72 / plan.media.height;
    plan.widthMM = plan.media.width / kPointsPerMM;
    plan.heightMM = plan.media.height / kPointsPerMM;
    return plan;
}
