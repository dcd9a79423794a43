#include "Common/Src/postscript/PostscriptText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <sstream>

namespace {

/// Sign, digits of the largest number, point and six decimals.
constexpr size_t kLongestNumber = std::numeric_limits<double>::max_exponent10 + 16;

std::string Number(double value, int decimals) {
    std::array<char, kLongestNumber> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                   std::chars_format::fixed, decimals);
    return {digits.data(), end.ptr};
}

/// A rounded value as an integer; adding 0.0 turns -0 into 0.
std::string Integer(double rounded) {
    return Number(rounded + 0.0, 0);
}

std::string Pair(double x, double y) {
    return FixedNumber(x) + ' ' + FixedNumber(y);
}

void AppendSection(std::string &text, const DocumentLayout &layout,
                   PostscriptDocument::Section section) {
    std::ostringstream stream;
    layout.document.WriteSection(section, stream);
    text += stream.str();
}

void AppendBoundingBox(std::string &text, const DocumentLayout &layout) {
    text += "%%BoundingBox: " + Integer(std::floor(layout.llx)) + ' ' +
            Integer(std::floor(layout.lly)) + ' ' + Integer(std::ceil(layout.urx)) + ' ' +
            Integer(std::ceil(layout.ury)) + '\n';
    text += "%%HiResBoundingBox: " + Pair(layout.llx, layout.lly) + ' ' +
            Pair(layout.urx, layout.ury) + '\n';
}

const char *ProcessColors(ColourMode mode) {
    switch (mode) {
        case ColourMode::CMYK:
            return "%%DocumentProcessColors: Cyan Magenta Yellow Black\n";
        case ColourMode::Gray:
            return "%%DocumentProcessColors: Black\n";
        default:
            return "";
    }
}

const char *ColourSpace(ColourMode mode) {
    switch (mode) {
        case ColourMode::Gray:
            return "/DeviceGray setcolorspace\n";
        case ColourMode::RGB:
            return "/DeviceRGB setcolorspace\n";
        default:
            return "/DeviceCMYK setcolorspace\n";
    }
}

const char *DecodeArray(ColourMode mode) {
    switch (mode) {
        case ColourMode::Gray:
            return "/Decode [0 1]\n";
        case ColourMode::RGB:
            return "/Decode [0 1 0 1 0 1]\n";
        default:
            return "/Decode [0 1 0 1 0 1 0 1]\n";
    }
}

/// Maps the unit square to the page image's place on the paper.
void AppendTransforms(std::string &text, const DocumentLayout &layout) {
    text += Pair(layout.llx, layout.lly) + " translate\n";
    if (layout.rotate90) text += "90 rotate\n";
    text += Pair(layout.widthMM * 72 / 25.4, layout.heightMM * 72 / 25.4) + " scale\n";
    if (layout.rotate90) text += "0 -1 translate\n";
    if (layout.mirrorHorizontal) text += "-1 1 scale\n-1 0 translate\n";
    if (layout.mirrorVertical) text += "1 -1 scale\n0 -1 translate\n";
}

void AppendImageDictionary(std::string &text, const DocumentLayout &layout) {
    const int64_t height = layout.heightPixels;
    const std::string w = std::to_string(layout.widthPixels);
    const std::string h = std::to_string(height);
    text += "<<\n/ImageType 1\n/Width " + w + " /Height " + h + "\n/BitsPerComponent 8\n";
    text += DecodeArray(layout.colourMode);
    text += "/ImageMatrix [" + w + " 0 0 " + std::to_string(-height) + " 0 " + h + "]\n";
    text += "/DataSource currentfile /ASCII85Decode filter\n>>\n";
}

} // namespace

std::string FixedNumber(double value) {
    return Number(value, 6);
}

void AppendHeader(std::string &text, const DocumentLayout &layout, const std::string &title,
                  const std::string &creationDate) {
    text += layout.eps ? "%!PS-Adobe-3.0 EPSF-3.0\n" : "%!PS-Adobe-3.0\n";
    text += "%%Creator: (ZEL Postscript Printer Driver)\n";
    text += "%%Title: (" + title + ")\n";
    text += "%%CreationDate: (" + creationDate + ")\n";
    if (!layout.eps) text += "%%Pages: (atend)\n";
    AppendBoundingBox(text, layout);
    text += ProcessColors(layout.colourMode);
    text += "%%LanguageLevel: 2\n%%DocumentData: Clean7Bit\n";
    AppendSection(text, layout, PostscriptDocument::kHeaderComments);
    text += "%%EndComments\n";
}

void AppendProlog(std::string &text, const DocumentLayout &layout) {
    text += "%%BeginProlog\n";
    if (!layout.eps) AppendSection(text, layout, PostscriptDocument::kProlog);
    text += "%%EndProlog\n";
}

void AppendSetup(std::string &text, const DocumentLayout &layout) {
    text += "%%BeginSetup\n";
    if (!layout.eps) {
        text += "% Disable CTRL-D as an end-of-file marker...\n"
                "userdict dup(\\004)cvn{}put (\\004\\004)cvn{}put\n"
                "/docsave save def\n";
        AppendSection(text, layout, PostscriptDocument::kSetup);
    }
    text += "%%EndSetup\n";
}

void AppendPageStart(std::string &text, const DocumentLayout &layout, int32_t page) {
    if (layout.eps) {
        text += "gsave\n";
    } else {
        const std::string number = std::to_string(page);
        text += "%%Page: " + number + ' ' + number + "\n%%BeginPageSetup\n/pgsave save def\n";
        AppendSection(text, layout, PostscriptDocument::kPageSetup);
        text += "%%EndPageSetup\n";
    }
    text += ColourSpace(layout.colourMode);
    AppendTransforms(text, layout);
    AppendImageDictionary(text, layout);
    text += "image\n";
}

void AppendPageEnd(std::string &text, const DocumentLayout &layout) {
    if (layout.eps) {
        text += "grestore\n";
        return;
    }
    text += "%%PageTrailer\n";
    AppendSection(text, layout, PostscriptDocument::kPageTrailer);
    text += "pgsave restore\nshowpage\n";
}

void AppendDocumentEnd(std::string &text, const DocumentLayout &layout, int32_t pageCount) {
    if (!layout.eps) {
        text += "%%Trailer\n";
        AppendSection(text, layout, PostscriptDocument::kTrailer);
        text += "docsave restore\n%%Pages: " + std::to_string(pageCount) + '\n';
    }
    text += "%%EOF\n";
}
