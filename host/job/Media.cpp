#include "host/job/Media.h"

#include "host/job/Decimal.h"
#include "host/terminal/ExitStatus.h"
#include <cmath>
#include <cstring>

namespace {

constexpr double kPointsPerInch = 72;
constexpr double kPointsPerMM = 72 / 25.4;
/// Widths typed in millimetres miss a limit given in points by a rounding error.
constexpr double kTolerance = 0.01;

/// Reads a positive number; moves `at` behind it.
bool ReadNumber(const std::string &text, size_t &at, double &number) {
    return ReadDecimal(text, at, number) && number > 0;
}

bool ReadPair(const std::string &text, size_t &at, double &first, double &second) {
    if (!ReadNumber(text, at, first)) return false;
    if (at >= text.size() || (text[at] != 'x' && text[at] != 'X')) return false;
    return ReadNumber(text, ++at, second);
}

template <typename T>
std::string Names(const std::vector<T> &list) {
    constexpr size_t kMost = 12;
    std::string names;
    for (size_t i = 0; i < list.size() && i < kMost; ++i)
        names += (i == 0 ? "" : ", ") + list[i].name;
    if (list.size() > kMost) names += ", ... (zelprint printer-info lists them all)";
    return names.empty() ? "none" : names;
}

std::string Shown(double number) {
    char text[32];
    (void)snprintf(text, sizeof text, "%g", std::round(number * 100) / 100);
    return text;
}

void CheckLimits(const CustomLimits &limits, const PaperSize &size) {
    if (size.width >= limits.minWidth - kTolerance && size.width <= limits.maxWidth + kTolerance &&
        size.height >= limits.minHeight - kTolerance &&
        size.height <= limits.maxHeight + kTolerance)
        return;
    throw HostError(ExitStatus::Usage,
                    "the printer takes pages from " + Shown(limits.minWidth) + " x " +
                        Shown(limits.minHeight) + " to " + Shown(limits.maxWidth) + " x " +
                        Shown(limits.maxHeight) + " points, not " + Shown(size.width) + " x " +
                        Shown(size.height) + "; choose another --media");
}

} // namespace

std::optional<PaperSize> ParsePaperSize(const std::string &text) {
    PaperSize size;
    size_t at = 0;
    if (!ReadPair(text, at, size.width, size.height)) return std::nullopt;
    const std::string unit = text.substr(at);
    const double factor = unit == "pt"   ? 1
                          : unit == "mm" ? kPointsPerMM
                          : unit == "in" ? kPointsPerInch
                                         : 0;
    if (factor == 0) return std::nullopt;
    return PaperSize{size.width * factor, size.height * factor};
}

std::optional<Dpi> ParseDpi(const std::string &text) {
    Dpi dpi;
    size_t at = 0;
    if (!ReadPair(text, at, dpi.x, dpi.y)) {
        at = 0;
        if (!ReadNumber(text, at, dpi.x)) return std::nullopt;
        dpi.y = dpi.x;
    }
    const std::string unit = text.substr(at);
    if (!unit.empty() && unit != "dpi") return std::nullopt;
    return IsGoodDpi(dpi.x) && IsGoodDpi(dpi.y) ? std::optional(dpi) : std::nullopt;
}

RecordPage ChooseMedia(const PrinterModel &printer, const std::string &text, bool eps) {
    if (const PrinterPage *page = printer.FindPage(text))
        return {page->name, false, page->Width(), page->Height()};
    const std::optional<PaperSize> size = ParsePaperSize(text);
    if (!size)
        throw HostError(ExitStatus::Usage, "the printer has no page called \"" + text +
                                               "\"; it has " + Names(printer.pages) +
                                               "; sizes are written like 210x297mm");
    if (!eps && !printer.custom)
        throw HostError(ExitStatus::Usage, "the printer has no custom page sizes; choose one of " +
                                               Names(printer.pages) + ", or print with --eps");
    if (!eps) CheckLimits(*printer.custom, *size);
    return {{}, true, size->width, size->height};
}

RecordResolution ChooseResolution(const PrinterModel &printer, const std::string &text) {
    if (const PrinterResolution *named = printer.FindResolution(text))
        return {named->name, named->xDpi, named->yDpi};
    const std::optional<Dpi> dpi = ParseDpi(text);
    if (!dpi)
        throw HostError(ExitStatus::Usage, "the printer has no resolution called \"" + text +
                                               "\"; it has " + Names(printer.resolutions) +
                                               ", or give a number from " + RangeOfDpi());
    const PrinterResolution *best = printer.BestResolution(dpi->x, dpi->y);
    return {best ? best->name : std::string(), dpi->x, dpi->y};
}
