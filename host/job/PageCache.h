/// The rows of pages that are printed more than once, so that further copies need not be made of
/// the files again.
#pragma once

#include "host/placement/PageLayout.h"
#include "host/readers/RowReader.h"
#include "host/readers/UnnamedFile.h"
#include <map>
#include <memory>
#include <vector>

/// Keeps what it is given in a temporary file of at most 4 GiB and half the room that is left for
/// it; a page that does not fit, or cannot be written, is not kept. Nothing is made before the
/// first page.
class PageCache {
public:
    /// Begins to keep page `page`; where it lies is kept with it.
    void Begin(size_t page, const Placement &placement);
    /// The next rows of that page.
    void Add(const Rows &rows);
    /// All rows of it have come.
    void End();

    /// Where a page that was kept lies; null for another.
    [[nodiscard]] const Placement *Find(size_t page) const;
    /// Rows of a page that was kept, from row `top` on; none at its end. Valid until the next call.
    /// Throws HostError (Output) when they cannot be read.
    [[nodiscard]] Rows Read(size_t page, int top);

private:
    struct Page {
        Placement placement;
        uint64_t at = 0; ///< where its rows begin
        int rowBytes = 0, count = 0;
    };

    std::unique_ptr<UnnamedFile> mFile;
    uint64_t mSize = 0, mMost = 0;
    std::map<size_t, Page> mPages;
    size_t mNumber = 0; ///< of the page that is coming
    Page mComing;
    bool mKeeps = false; ///< and whether it can be kept so far
    std::vector<uint8_t> mRows;
};
