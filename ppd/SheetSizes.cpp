#include "ppd/SheetSizes.h"

#include "ppd/MiniParser.h"
#include "ppd/TextFields.h"

#include <cmath>

namespace PPD {

SheetSizes ReadSheetSizes(MiniParser &parser) {
    SheetSizes sizes;
    for (const auto &[page, statement] : parser.GetOptionEntry("*PaperDimension")) {
        FieldReader reader(statement.GetValue());
        SheetSize size;
        if (!reader.ReadNumber(size.width) || !reader.ReadNumber(size.height)) continue;
        if (size.width > 0 && size.height > 0 && std::isfinite(size.width) &&
            std::isfinite(size.height))
            sizes[page] = size;
    }
    return sizes;
}

SheetSizes BuiltInSheetSizes() {
    return {{"A4", {595, 842}}};
}

SheetSizes SheetSizesOf(CFURLRef ppd) {
    if (!ppd) return BuiltInSheetSizes();
    MiniParser parser(ppd);
    return ReadSheetSizes(parser);
}

} // namespace PPD
