/// Where a page of a PDF file lies on the page that is printed. Points are 1/72 inch; y goes up.
#pragma once

#include "host/placement/PageLayout.h"

struct PDFBox {
    double left = 0, bottom = 0, right = 0, top = 0;
    [[nodiscard]] double Width() const { return right - left; }
    [[nodiscard]] double Height() const { return top - bottom; }
};

/// A page as it is looked at: its crop box, turned by /Rotate and enlarged by UserUnit. In points.
struct PDFPage {
    double width = 0, height = 0;
    bool transparent = false; ///< whether it uses transparency
};

/// What a PDF file says of a page, as it stands in the file.
struct PDFPageEntry {
    PDFBox media, crop; ///< empty: absent
    double rotation = 0, userUnit = 1;
    bool transparent = false;
};

/// The page that an entry describes. Numbers that make no sense are replaced by the standard's
/// defaults.
[[nodiscard]] PDFPage MakePDFPage(const PDFPageEntry &entry);

/// x' = a x + c y + e, y' = b x + d y + f.
struct PDFMatrix {
    double a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;
};

/// From points of the page, with its lower left corner at 0 0, to points of the driver's page.
[[nodiscard]] PDFMatrix MatrixOf(const PageGrid &grid, const PDFPage &page,
                                 const PagePlacement &where);
