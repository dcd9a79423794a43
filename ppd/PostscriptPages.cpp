#include "ppd/PostscriptPages.h"

#include "ppd/MiniParser.h"
#include "ppd/ParserError.h"
#include "ppd/TextFields.h"
#include "support/Units.h"

#include <algorithm>
#include <limits>
#include <locale>
#include <sstream>

namespace {

/// Truncated toward zero, and held inside 64 bits: the file says what the number is.
int64_t Truncated(double value) {
    constexpr double kLimit = 9.0e18;
    return static_cast<int64_t>(std::max(-kLimit, std::min(kLimit, value)));
}

bool IsOdd(double value) {
    return Truncated(value) % 2 != 0;
}

PostscriptPage MakePage(const PPD::Statement &size, const std::string &area) {
    PPD::FieldReader reader(area);
    double edges[4] = {};
    for (double &edge : edges)
        reader.ReadNumber(edge);
    return {size.GetOptionKeyword(),
            size.GetTranslatedOptionKeyword(),
            size.GetValue(),
            edges[0],
            edges[1],
            edges[2],
            edges[3]};
}

} // namespace

PostscriptPages::CustomPageParam::CustomPageParam(std::string name, const std::string &text)
    : mName(std::move(name)) {
    PPD::FieldReader reader(text);
    reader.ReadInteger(mStackIndex);
    reader.ReadWord(mUnits);
    reader.ReadNumber(mMinValue);
    reader.ReadNumber(mMaxValue);
    mValue = mMinValue;
}

void PostscriptPages::CustomPageParam::SetValue(double value) {
    mValue = Clamped(value, {mMinValue, mMaxValue});
}

PostscriptPages::PostscriptPages()
    : mPages{PostscriptPage("A4", "A4", "a4", 13.0, 10.0, 577.0, 832.0)} {}

PostscriptPages::PostscriptPages(PPD::MiniParser &parser) {
    const auto sizes = parser.GetOptionEntry("*PageSize");
    const auto areas = parser.GetOptionEntry("*ImageableArea");
    for (const auto &[option, size] : sizes) {
        const auto area = areas.find(option);
        mPages.push_back(MakePage(size, area == areas.end() ? "" : area->second.GetValue()));
    }
    const int32_t index = FindPageByName(parser.GetStatement("*DefaultPageSize").GetValue());
    mDefaultPageIndex = index < 0 ? 0 : index;
    ReadCustomPageSetup(parser);
}

void PostscriptPages::ReadCustomPageSetup(PPD::MiniParser &parser) {
    try {
        const PPD::Statement custom = parser.GetStatement("*CustomPageSize");
        if (custom.GetOptionKeyword() != "True") return;
        mHasCustomPageSetup = true;
        mCustomPageCode = custom.GetValue();
        mMaxMediaWidth = parser.RealKeyword("*MaxMediaWidth", mMaxMediaWidth);
        mMaxMediaHeight = parser.RealKeyword("*MaxMediaHeight", mMaxMediaHeight);
        for (const auto &[option, entry] : parser.GetOptionEntry("*ParamCustomPageSize"))
            mCustomParams[option] = CustomPageParam(option, entry.GetValue());
    } catch (...) {
        mHasCustomPageSetup = false;
    }
}

int32_t PostscriptPages::NumPages() const {
    return static_cast<int32_t>(mPages.size());
}

const PostscriptPage &PostscriptPages::GetPage(int32_t index) const {
    if (index < 0 || index >= NumPages()) throw PPD::ParserError("The printer has no such page");
    return mPages[static_cast<size_t>(index)];
}

int32_t PostscriptPages::DefaultPageIndex() const {
    return mDefaultPageIndex;
}

int32_t PostscriptPages::FindPageByName(const std::string &name) const {
    for (size_t i = 0; i < mPages.size(); ++i)
        if (mPages[i].GetName() == name) return static_cast<int32_t>(i);
    return -1;
}

bool PostscriptPages::HasCustomPageSetup() const {
    return mHasCustomPageSetup;
}

const std::string &PostscriptPages::GetCustomPageCode() const {
    return mCustomPageCode;
}

const std::map<std::string, PostscriptPages::CustomPageParam> &
PostscriptPages::GetCustomPageParams() const {
    return mCustomParams;
}

PostscriptPages::CustomPageParam &
PostscriptPages::GetCustomPageParam(const std::string &name) const {
    return mCustomParams[name];
}

void PostscriptPages::GetCustomPageLimits(double &minWidth, double &maxWidth, double &minHeight,
                                          double &maxHeight) const {
    minWidth = minHeight = 0;
    maxWidth = mMaxMediaWidth;
    maxHeight = mMaxMediaHeight;
    if (!mHasCustomPageSetup) return;
    const CustomPageParam *across = &GetCustomPageParam("Width");
    const CustomPageParam *along = &GetCustomPageParam("Height");
    double acrossOffset = GetCustomPageParam("WidthOffset").GetMinValue();
    double alongOffset = GetCustomPageParam("HeightOffset").GetMinValue();
    if (IsOdd(GetCustomPageParam("Orientation").GetValue())) {
        std::swap(across, along);
        std::swap(acrossOffset, alongOffset);
    }
    minWidth = std::max(0.0, across->GetMinValue() - acrossOffset);
    minHeight = std::max(0.0, along->GetMinValue() - alongOffset);
    maxWidth = std::min(across->GetMaxValue() - acrossOffset, maxWidth - acrossOffset);
    maxHeight = std::min(along->GetMaxValue() - alongOffset, maxHeight - alongOffset);
}

PostscriptPage PostscriptPages::GetCustomPage(double first, double second) const {
    if (!mHasCustomPageSetup) return {};
    CustomPageParam &orientation = GetCustomPageParam("Orientation");
    // The largest orientation, not the first: which of width and height is fed first depends on it.
    orientation.SetValue(std::max(orientation.GetMinValue(), orientation.GetMaxValue()));
    CustomPageParam *across = &GetCustomPageParam("Width");
    CustomPageParam *along = &GetCustomPageParam("Height");
    const CustomPageParam *left = &GetCustomPageParam("WidthOffset");
    const CustomPageParam *below = &GetCustomPageParam("HeightOffset");
    if (!IsOdd(orientation.GetValue())) {
        std::swap(across, along);
        std::swap(left, below);
    }
    across->SetValue(first);
    along->SetValue(second);
    return {"Custom",
            "Custom",
            CustomPagePostscript(),
            left->GetValue(),
            below->GetValue(),
            left->GetValue() + across->GetValue(),
            below->GetValue() + along->GetValue()};
}

/// The values of all parameters as operands, and the printer's code that takes them.
std::string PostscriptPages::CustomPagePostscript() const {
    std::vector<const CustomPageParam *> operands;
    for (const auto &[name, param] : mCustomParams)
        operands.push_back(&param);
    std::stable_sort(operands.begin(), operands.end(), [](const auto *a, const auto *b) {
        return a->GetStackIndex() < b->GetStackIndex();
    });
    std::ostringstream code;
    code.imbue(std::locale::classic()); // the host may have set another decimal separator
    for (const CustomPageParam *param : operands) {
        if (param->GetUnits() == "int") {
            code << Truncated(param->GetValue()) << ' ';
        } else {
            code << param->GetValue() << ' ';
        }
    }
    code << '\n' << mCustomPageCode;
    return code.str();
}
