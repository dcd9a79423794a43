#include "ppd/PostscriptResolutions.h"

#include "ppd/MiniParser.h"
#include "ppd/ParserError.h"
#include "ppd/TextFields.h"

namespace {

struct Dpi {
    double x = 0, y = 0;
};

/// "300dpi" or "1200x600dpi"; whatever follows the numbers is of no interest.
Dpi ReadResolutionText(const std::string &text) {
    PPD::FieldReader reader(text);
    Dpi dpi;
    reader.ReadPlainNumber(dpi.x);
    char joint = 0;
    if (reader.ReadCharacter(joint) && joint == 'x') {
        reader.ReadPlainNumber(dpi.y);
    } else {
        dpi.y = dpi.x;
    }
    return dpi;
}

PostscriptResolution MakeResolution(const std::string &name, const std::string &uiName,
                                    const std::string &postscript) {
    const Dpi dpi = ReadResolutionText(name);
    return {name, uiName, postscript, dpi.x, dpi.y};
}

} // namespace

PostscriptResolutions::PostscriptResolutions()
    : mResolutions{PostscriptResolution("300dpi", "300dpi", "", 300.0, 300.0)} {}

PostscriptResolutions::PostscriptResolutions(PPD::MiniParser &parser) {
    for (const auto &[option, entry] : parser.GetOptionEntry("*Resolution"))
        mResolutions.push_back(
            MakeResolution(option, entry.GetTranslatedOptionKeyword(), entry.GetValue()));
    const PPD::Statement preset = parser.GetStatement("*DefaultResolution");
    if (mResolutions.empty())
        mResolutions.push_back(
            MakeResolution(preset.GetValue(), preset.GetTranslatedValue(), std::string()));
    const int32_t index = FindResolutionByName(preset.GetValue());
    mDefaultResolutionIndex = index < 0 ? 0 : index;
}

int32_t PostscriptResolutions::NumResolutions() const {
    return static_cast<int32_t>(mResolutions.size());
}

const PostscriptResolution &PostscriptResolutions::GetResolution(int32_t index) const {
    if (index < 0 || index >= NumResolutions())
        throw PPD::ParserError("The printer has no such resolution");
    return mResolutions[static_cast<size_t>(index)];
}

int32_t PostscriptResolutions::DefaultResolutionIndex() const {
    return mDefaultResolutionIndex;
}

int32_t PostscriptResolutions::FindResolutionByName(const std::string &name) const {
    for (size_t i = 0; i < mResolutions.size(); ++i)
        if (mResolutions[i].GetName() == name) return static_cast<int32_t>(i);
    return -1;
}
