/// Sizes and limits of a printer's pages, in points, as a record has them: turned when it is
/// rotated.
#pragma once

#include "dialogs/PageSetupModel.h"

#include <optional>

class PostscriptPage;
class PostscriptPages;

struct PageSize {
    double width, height;
};

/// The size of the page's imageable area.
[[nodiscard]] PageSize SizeInRecord(const PostscriptPage &page, bool rotated);

/// The limits of custom pages; nothing when the printer's description does not tell them.
[[nodiscard]] std::optional<CustomDimensions> LimitsInRecord(const PostscriptPages &pages,
                                                             bool rotated);
