/// Everything that is decided about a job before its first page is printed, step by step.
#pragma once

#include "host/driver/Record.h"
#include "host/job/SourceFile.h"
#include <string>
#include <vector>

/// One page to print.
struct PageReference {
    const SourceFile *file = nullptr;
    int page = 0;            ///< within the file, from 0
    PagePlacement placement; ///< in the plan's area
};

/// Which pages are printed, and how often.
struct PageChoice {
    std::vector<PageReference> pages; ///< of one copy
    int copies = 1;
    bool allowDamaged = false; ///< print what a decoder makes of a damaged file

    [[nodiscard]] int TotalPages() const { return static_cast<int>(pages.size()) * copies; }
};

/// How the page lies on the paper.
struct PaperPlan {
    bool eps = false;
    bool rotated = false; ///< the page lies turned on the paper
    bool turned = false;  ///< it is turned by zelprint, not by the driver
};

/// From which pixels to which colours.
struct ColourPlan {
    uint32_t colourSpace = kZELColourSpaceCMYK;
    std::string separation; ///< empty: "Standard", or no CMYK document
    DocumentPixels pixels = DocumentPixels::XRGB;
    /// How ink and light belong together, for pages that are drawn; see PageTarget.
    std::shared_ptr<const InkProfile> inks;

    /// Makes ink of the pages that come in light, where others come in ink.
    SeparateColours separate;

    /// Whether light becomes ink anywhere in the document.
    [[nodiscard]] bool Separates() const {
        return colourSpace == kZELColourSpaceCMYK &&
               (pixels != DocumentPixels::CMYK || inks || separate);
    }
    ColourIntent intent = ColourIntent::Relative; ///< from ink to light
};

/// The page as the driver takes it.
struct RasterPlan {
    RecordPage media;
    RecordResolution resolution;
    PageGrid grid;
    PrintableArea area; ///< the page as it lies in front of the reader
    double widthMM = 0, heightMM = 0;
};

/// Where the document goes.
struct Destination {
    std::string title;
    std::string folder;
    std::string name;           ///< what the first file is called there; empty: after the title
    bool namedInDialog = false; ///< the user may have chosen another in the print dialog
    bool moreFollow = false;    ///< documents, which a signal may keep from being printed
    bool sync = true;           ///< wait until the document is on the disk
    bool queue = false;
};

/// The results of all steps.
struct JobPlan : PageChoice, PaperPlan, ColourPlan, RasterPlan, Destination {
    /// What a page is to become on the driver's page.
    [[nodiscard]] PageTarget TargetOf(const PageReference &page) const;
    /// Bytes of one page's samples in the document.
    [[nodiscard]] uint64_t PageBytes() const;
    /// Bounds of the size of a file with `count` pages.
    [[nodiscard]] uint64_t LeastFileSize(int count) const;
    [[nodiscard]] uint64_t MostFileSize(int count) const;
};

/// Samples a pixel of a document in this colour space.
[[nodiscard]] int ComponentsOf(uint32_t colourSpace);
/// "cmyk", "gray" or "rgb".
[[nodiscard]] const char *NameOfColourSpace(uint32_t colourSpace);
