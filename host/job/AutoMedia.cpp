#include "host/job/AutoMedia.h"

#include "host/terminal/ExitStatus.h"
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

namespace {

constexpr double kPointsPerMM = 72 / 25.4;
/// As much as two makers' ideas of one paper size differ by.
constexpr double kSameSize = kPointsPerMM;

/// How far the edges are off, whichever way the two lie.
double Difference(const DocumentSize &a, const DocumentSize &b) {
    const auto [shortA, longA] = std::minmax(a.width, a.height);
    const auto [shortB, longB] = std::minmax(b.width, b.height);
    return std::abs(shortA - shortB) + std::abs(longA - longB);
}

bool IsSameSize(const DocumentSize &a, const DocumentSize &b) {
    return Difference(a, b) <= kSameSize;
}

DocumentSize SheetOf(const PrinterPage &page) {
    if (page.sheetWidth > 0 && page.sheetHeight > 0) return {page.sheetWidth, page.sheetHeight};
    return {page.Width(), page.Height()};
}

const PrinterPage *NearestPage(const PrinterModel &printer, const DocumentSize &size) {
    const auto nearer = [&size](const PrinterPage &a, const PrinterPage &b) {
        return Difference(SheetOf(a), size) < Difference(SheetOf(b), size);
    };
    const auto nearest = std::min_element(printer.pages.begin(), printer.pages.end(), nearer);
    return nearest == printer.pages.end() ? nullptr : &*nearest;
}

bool Takes(const CustomLimits &limits, const DocumentSize &size) {
    return size.width >= limits.minWidth && size.width <= limits.maxWidth &&
           size.height >= limits.minHeight && size.height <= limits.maxHeight;
}

RecordPage CustomPage(const DocumentSize &size) {
    return {{}, true, size.width, size.height};
}

std::string Shown(int number, const DocumentSize &size) {
    char text[80];
    (void)snprintf(text, sizeof text, "page %d is %.1f x %.1f mm", number,
                   size.width / kPointsPerMM, size.height / kPointsPerMM);
    return text;
}

DocumentSize SizeOfPage(const SourceFile &file, int page) {
    const DocumentPage size = PageOf(file.Describe(page));
    if (!size.known)
        throw HostError(ExitStatus::Usage, file.Path() + ": page " + std::to_string(page + 1) +
                                               " has no size of its own, which --media auto "
                                               "needs; name a page with --media");
    return {size.width, size.height};
}

} // namespace

DocumentSize SizeOfDocument(const std::vector<SourceFile> &files, const PageSet &range) {
    DocumentSize first;
    int firstNumber = 0;
    int number = 0;
    for (const SourceFile &file : files)
        for (int page = 0; page < file.PageCount(); ++page) {
            if (!range.Contains(++number)) continue;
            const DocumentSize size = SizeOfPage(file, page);
            if (firstNumber == 0) {
                first = size;
                firstNumber = number;
            } else if (!IsSameSize(first, size)) {
                throw HostError(ExitStatus::Usage, "--media auto is for pages of one size (" +
                                                       Shown(firstNumber, first) + ", " +
                                                       Shown(number, size) +
                                                       "); name a page with --media");
            }
        }
    return first;
}

RecordPage NearestMedia(const PrinterModel &printer, const DocumentSize &size, bool eps) {
    if (eps) return CustomPage(size);
    const PrinterPage *nearest = NearestPage(printer, size);
    const bool exact = nearest && IsSameSize(SheetOf(*nearest), size);
    if (printer.custom && !exact) {
        const DocumentSize onItsSide = {size.height, size.width};
        if (Takes(*printer.custom, size)) return CustomPage(size);
        if (Takes(*printer.custom, onItsSide)) return CustomPage(onItsSide);
    }
    if (!nearest)
        throw HostError(ExitStatus::Usage,
                        "the printer has no page for --media auto; give a size, like 210x297mm");
    return {nearest->name, false, nearest->Width(), nearest->Height()};
}
