/// The sizes of a printer's sheets. A document knows a page by its imageable area alone; these are
/// for who shows a page on its sheet or places it there: the page setup's picture, and hosts.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <map>
#include <string>

namespace PPD {

class MiniParser;

struct SheetSize {
    double width = 0, height = 0; ///< points, both above 0
};

/// By the names of pages, as *PaperDimension has them; what makes no sense is left out.
using SheetSizes = std::map<std::string, SheetSize>;

[[nodiscard]] SheetSizes ReadSheetSizes(MiniParser &parser);

/// Of a PPD file, or of the built-in description for null. Throws PPD::ParserError.
[[nodiscard]] SheetSizes SheetSizesOf(CFURLRef ppd);

/// That of the one page of the built-in description.
[[nodiscard]] SheetSizes BuiltInSheetSizes();

} // namespace PPD
