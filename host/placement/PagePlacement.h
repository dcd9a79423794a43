/// How large a page of the document is printed and where on the sheet: the one rule for pictures
/// and for pages that have a size of their own. Lengths are points; a page is looked at upright.
#pragma once

#include <optional>

/// What is asked of the size of a page.
enum class ScaleRule {
    Shrink,  ///< its own size if that fits, else as large as fits
    Fit,     ///< as large as fits
    Fill,    ///< as small as covers the printable area
    Percent, ///< so many percent of its own size
};

/// Which edges come together, or the middles.
enum class Alignment { Start, Middle, End };

struct PlacementWishes {
    std::optional<ScaleRule> rule; ///< empty: Shrink, but Fit when its own size is not known
    double percent = 100;          ///< for ScaleRule::Percent
    bool autoRotate = true;        ///< turns the page where that shows more of it, or larger
    Alignment across = Alignment::Middle, down = Alignment::Middle;
};

/// A length at each edge.
struct Edges {
    double left = 0, top = 0, right = 0, bottom = 0;
};

/// What the printer can print on, and the sheet around it.
struct PrintableArea {
    double width = 0, height = 0;
    Edges margins; ///< from there to the edges of the sheet; 0 where the sheet is not known
    /// What may hang over unnoticed: a rounded size is no reason to shrink a page.
    double slackX = 0, slackY = 0;
};

struct DocumentPage {
    double width = 0, height = 0;
    bool known = true; ///< that is its size; else only its shape
    /// It matters to its very edge, so that it is shrunk rather than cut at the margins of a sheet
    /// that is not its own. Other pages have white margins themselves.
    bool picture = true;
};

struct PagePlacement {
    double scale = 1;      ///< of its own size, or of 72 pixels an inch
    bool ofOwnSize = true; ///< its own size is known
    bool turned = false;   ///< lies on its left side: a quarter turn counterclockwise
    /// All of the page as it then lies, from the upper left corner of the printable area.
    double left = 0, top = 0, width = 0, height = 0;
    Edges cut; ///< how much of it is outside of the printable area, on the paper
};

[[nodiscard]] PagePlacement PlacePage(const PrintableArea &area, const DocumentPage &page,
                                      const PlacementWishes &wishes);

/// The same on paper that lies on its left side; `width` is that of the area before. What was
/// turned is upright then: on such paper pages are turned clockwise.
[[nodiscard]] PagePlacement TurnPlacement(const PagePlacement &placement, double width);
