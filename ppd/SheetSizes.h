/// The sizes of a printer's sheets. The driver itself knows a page by its imageable area alone;
/// these are for hosts, which may want to place a page on its sheet.
#pragma once

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

/// That of the one page of the built-in description.
[[nodiscard]] SheetSizes BuiltInSheetSizes();

} // namespace PPD
