#include "host/readers/TIFFPages.h"

#include "host/readers/ImageFile.h"
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

std::string Line(const char *format, va_list arguments) {
    char line[256];
    (void)vsnprintf(line, sizeof line, format, arguments);
    return line;
}

int OnError(TIFF *, void *data, const char *module, const char *format, va_list arguments) {
    auto &complaints = *static_cast<TIFFComplaints *>(data);
    const std::string text = Line(format, arguments);
    if (complaints.error.empty()) complaints.error = text;
    if (complaints.damage.empty() && IsFromDecoder(module)) complaints.damage = text;
    return 1;
}

int OnWarning(TIFF *, void *data, const char *module, const char *format, va_list arguments) {
    auto &complaints = *static_cast<TIFFComplaints *>(data);
    if (complaints.damage.empty() && IsFromDecoder(module))
        complaints.damage = Line(format, arguments);
    return 1;
}

/// Samples of a pixel that are its colour; 0 for kinds that are no pictures to look at.
int ColoursOf(uint16_t photometric) {
    switch (photometric) {
        case PHOTOMETRIC_MINISWHITE:
        case PHOTOMETRIC_MINISBLACK:
        case PHOTOMETRIC_PALETTE:
        case PHOTOMETRIC_MASK:
        case PHOTOMETRIC_LOGL:
            return 1;
        case PHOTOMETRIC_RGB:
        case PHOTOMETRIC_YCBCR:
        case PHOTOMETRIC_CIELAB:
        case PHOTOMETRIC_LOGLUV:
            return 3;
        case PHOTOMETRIC_SEPARATED:
            return 4;
        default:
            return 0;
    }
}

/// The first sample that the file calls alpha, or -1. The kinds are told of the last samples.
int AlphaOf(TIFF *tiff, int samples) {
    uint16_t count = 0;
    const uint16_t *kinds = nullptr;
    if (!TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds)) return -1;
    for (int i = 0; i < count; ++i)
        if (kinds[i] == EXTRASAMPLE_ASSOCALPHA || kinds[i] == EXTRASAMPLE_UNASSALPHA)
            return samples - count + i;
    return -1;
}

/// Whether the inks, as far as the file names them, are those of process printing in their order.
bool AreProcessInks(TIFF *tiff) {
    if (TIFFFieldOr<uint16_t>(tiff, TIFFTAG_INKSET, INKSET_CMYK) == INKSET_CMYK) return true;
    const char *names = nullptr;
    if (!TIFFGetField(tiff, TIFFTAG_INKNAMES, &names) || !names) return false;
    for (const char *ink : {"Cyan", "Magenta", "Yellow", "Black"}) {
        if (strcasecmp(names, ink) != 0) return false;
        names += strlen(names) + 1;
    }
    return true;
}

/// Samples whose black and white are known.
bool HaveKnownRange(TIFF *tiff, uint16_t photometric) {
    const auto bits = TIFFFieldOr<uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE, 1);
    const auto format = TIFFFieldOr<uint16_t>(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    if (photometric == PHOTOMETRIC_LOGLUV || photometric == PHOTOMETRIC_LOGL) return true;
    if (photometric == PHOTOMETRIC_CIELAB)
        return (bits == 8 || bits == 16) && format <= SAMPLEFORMAT_INT;
    if (format == SAMPLEFORMAT_IEEEFP)
        return bits == 32 &&
               (photometric == PHOTOMETRIC_RGB || photometric == PHOTOMETRIC_MINISBLACK);
    return (format == SAMPLEFORMAT_UINT || format == SAMPLEFORMAT_VOID) && bits <= 16;
}

std::string ProblemOf(TIFF *tiff, uint16_t photometric, int samples, int colours) {
    if (colours == 0) return "its kind of colours is not supported";
    if (samples < colours) return "its pixels have fewer samples than colours";
    if (!HaveKnownRange(tiff, photometric)) return "its kind of samples is not supported";
    if (photometric == PHOTOMETRIC_SEPARATED && !AreProcessInks(tiff))
        return "its inks are not cyan, magenta, yellow and black";
    return {};
}

} // namespace

TIFFPtr OpenTIFF(const std::string &path, TIFFComplaints &complaints) {
    TIFFOpenOptions *options = TIFFOpenOptionsAlloc();
    TIFFOpenOptionsSetErrorHandlerExtR(options, OnError, &complaints);
    TIFFOpenOptionsSetWarningHandlerExtR(options, OnWarning, &complaints);
    // Not mapped into memory: a file that somebody cuts short meanwhile would end the process.
    TIFFPtr tiff(TIFFOpenExt(path.c_str(), "rm", options));
    TIFFOpenOptionsFree(options);
    return tiff;
}

bool IsFromDecoder(const char *module) {
    return module && (strstr(module, "Decode") || strcmp(module, "JPEGLib") == 0);
}

TIFFPage DescribeTIFFPage(TIFF *tiff) {
    TIFFPage page;
    page.number = TIFFCurrentDirectory(tiff);
    page.offset = TIFFCurrentDirOffset(tiff);
    page.samples = TIFFFieldOr<uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    const auto photometric = TIFFFieldOr<uint16_t>(tiff, TIFFTAG_PHOTOMETRIC, UINT16_MAX);
    const int colours = ColoursOf(photometric);
    page.beyond = std::max(0, page.samples - colours);
    page.alpha = page.beyond > 0 ? AlphaOf(tiff, page.samples) : -1;
    if (page.alpha < colours) page.alpha = -1;
    page.problem = ProblemOf(tiff, photometric, page.samples, colours);
    return page;
}

bool IsSubordinate(TIFF *tiff) {
    uint32_t kind = 0;
    if (TIFFGetField(tiff, TIFFTAG_SUBFILETYPE, &kind))
        return (kind & (FILETYPE_REDUCEDIMAGE | FILETYPE_MASK)) != 0;
    uint16_t oldKind = 0;
    return TIFFGetField(tiff, TIFFTAG_OSUBFILETYPE, &oldKind) && oldKind == OFILETYPE_REDUCEDIMAGE;
}

std::vector<TIFFPage> ListTIFFPages(const std::string &path, const std::string &name) {
    TIFFComplaints complaints;
    const TIFFPtr tiff = OpenTIFF(path, complaints);
    if (!tiff) ThrowUnreadable(name, 0, complaints.error);
    std::vector<TIFFPage> all;
    std::vector<TIFFPage> pages;
    for (bool isLast = false; !isLast;) {
        all.push_back(DescribeTIFFPage(tiff.get()));
        if (!IsSubordinate(tiff.get())) pages.push_back(all.back());
        isLast = TIFFLastDirectory(tiff.get()) != 0;
        if (!isLast && !TIFFReadDirectory(tiff.get()))
            ThrowUnreadable(name, static_cast<int>(all.size()), complaints.error);
    }
    return pages.empty() ? all : pages;
}
