/// The PostScript text around the image data. Every function appends to `text` and does nothing
/// else; docs/output-format.md shows what the parts look like together.
#pragma once

#include "Common/Src/postscript/PostscriptDocument.h"
#include <string>

/// The values are those of OutputOptions::colourMode.
enum class ColourMode : int32_t { CMYK = 0, Gray = 1, RGB = 2 };

/// What the text of a document depends on. Lengths in points, but for the image's size.
struct DocumentLayout {
    int32_t widthPixels = 0, heightPixels = 0; ///< of every page image
    double widthMM = 0, heightMM = 0;          ///< its size on paper, in millimetres
    ColourMode colourMode = ColourMode::CMYK;
    bool mirrorHorizontal = false, mirrorVertical = false, rotate90 = false;
    bool eps = false; ///< one file a page, without the code of most sections
    double llx = 0, lly = 0, urx = 0, ury = 0; ///< bounding box
    PostscriptDocument document;               ///< feature code
};

/// The comments up to "%%EndComments". `title` is not escaped.
void AppendHeader(std::string &text, const DocumentLayout &layout, const std::string &title,
                  const std::string &creationDate);
void AppendProlog(std::string &text, const DocumentLayout &layout);
void AppendSetup(std::string &text, const DocumentLayout &layout);

/// From the page comment up to the "image" operator; `page` counts from 1.
void AppendPageStart(std::string &text, const DocumentLayout &layout, int32_t page);

/// What follows the image data of a page, and of the last one.
void AppendPageEnd(std::string &text, const DocumentLayout &layout);
void AppendDocumentEnd(std::string &text, const DocumentLayout &layout, int32_t pageCount);

/// `value` as "%f" writes it in the C locale, whatever the host's locale is.
std::string FixedNumber(double value);
