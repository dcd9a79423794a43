/// Draws pages of one PDF file, one after the other, all in one size and one kind of colours.
#pragma once

#include "host/readers/ImageFile.h"
#include "host/readers/pdf/Ghostscript.h"
#include "host/readers/pdf/PDFMessages.h"
#include "host/readers/pdf/PDFOptions.h"
#include "host/readers/pdf/PDFPlacement.h"
#include <atomic>

/// What all pages of a renderer have in common.
struct PDFDrawing {
    PageGrid grid;
    DocumentPixels pixels = DocumentPixels::XRGB;
    std::shared_ptr<const InkProfile> inks; ///< not needed for gray, or for light as on a press

    [[nodiscard]] bool operator==(const PDFDrawing &other) const;
};

/// One page to draw: `number` counts from 1.
struct PDFPageJob {
    int number = 1;
    PDFPage page;
    PDFMatrix matrix; ///< from points of the page to points of the grid
};

class PDFRenderer {
public:
    /// Starts the renderer. Throws HostError.
    PDFRenderer(std::string path, const PDFOptions &options, const PDFDrawing &drawing);

    [[nodiscard]] const PDFDrawing &Drawing() const { return mDrawing; }
    /// 1: gray, 3: RGB, 4: CMYK.
    [[nodiscard]] int Bands() const;

    /// Draws a page and puts all its rows where there is room, until `stopped` or nobody wants
    /// more: the renderer is of no use then. Throws HostError (Input) when the page is not drawn
    /// whole.
    void Draw(const PDFPageJob &page, const PageRows::MakeRoom &room,
              const std::atomic<bool> &stopped);
    /// Ends the renderer after the last page. Throws HostError (Input) when it complains now.
    void Finish();
    /// Whether every page so far was drawn whole.
    [[nodiscard]] bool IsUsable() const { return mUsable; }

private:
    void Hear(const std::string &line);
    [[nodiscard]] size_t Read(uint8_t *samples, size_t size, const std::atomic<bool> &stopped);
    [[nodiscard]] bool ReadHeader(const std::atomic<bool> &stopped);
    [[nodiscard]] std::string ReadHeaderLine(const std::atomic<bool> &stopped);
    [[nodiscard]] bool ReadRows(const PageRows::MakeRoom &room, const std::atomic<bool> &stopped);
    void WaitForEnd(const std::atomic<bool> &stopped);
    void CheckTime() const;
    void Judge();
    [[nodiscard]] std::string WhyLost() const;
    [[noreturn]] void ThrowLost(const std::string &why) const;
    [[noreturn]] void ThrowEnded();

    std::string mPath;
    PDFDrawing mDrawing;
    int mPageSeconds;
    PDFMessages mMessages;
    Ghostscript mGhostscript;
    int mPage = 0;       ///< the page being drawn, from 1
    bool mDrawn = false; ///< it has been, says the renderer
    bool mUsable = true;
    bool mToldRepair = false;
    int64_t mWaited = 0; ///< milliseconds for samples of this page, and for its end
};
