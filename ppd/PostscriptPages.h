/// The page sizes that a printer offers, and its custom page sizes.
#pragma once

#include "ppd/PostscriptPage.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace PPD {
class MiniParser;
}

class PostscriptPages {
public:
    /// One parameter of the custom page size.
    class CustomPageParam {
    public:
        CustomPageParam() = default;
        /// From a "*ParamCustomPageSize" entry: its option keyword and its value's text.
        CustomPageParam(std::string name, const std::string &text);
        const std::string &GetName() const { return mName; }
        const std::string &GetUnits() const { return mUnits; }
        int32_t GetStackIndex() const { return mStackIndex; }
        double GetMinValue() const { return mMinValue; }
        double GetMaxValue() const { return mMaxValue; }
        double GetValue() const { return mValue; }
        /// Stores the value clamped to the range.
        void SetValue(double value);

    private:
        std::string mName, mUnits;
        int32_t mStackIndex = 0;
        double mMinValue = 0, mMaxValue = 0, mValue = 0;
    };

    /// The built-in description: one page, A4.
    PostscriptPages();
    /// Reads a PPD. Throws PPD::ParserError when "*DefaultPageSize" is missing or malformed.
    explicit PostscriptPages(PPD::MiniParser &parser);

    int32_t NumPages() const;
    /// Throws PPD::ParserError when there is no such page, as a printer's description without
    /// pages has no default page either.
    const PostscriptPage &GetPage(int32_t index) const;
    /// 0 also when there are no pages: look at NumPages first, GetPage refuses it then.
    int32_t DefaultPageIndex() const;
    /// Index of the first page of exactly that name, or -1.
    int32_t FindPageByName(const std::string &name) const;

    bool HasCustomPageSetup() const;
    const std::string &GetCustomPageCode() const;
    const std::map<std::string, CustomPageParam> &GetCustomPageParams() const;
    /// The parameter of that name; a missing one is created, all zero, and stays.
    CustomPageParam &GetCustomPageParam(const std::string &name) const;
    /// Permitted size of a custom page in points. Depends on the orientation parameter's value,
    /// which GetCustomPage changes.
    void GetCustomPageLimits(double &minWidth, double &maxWidth, double &minHeight,
                             double &maxHeight) const;
    /// The page "Custom" of the size asked for, clamped to the range; an empty page without custom
    /// page setup.
    PostscriptPage GetCustomPage(double first, double second) const;

private:
    void ReadCustomPageSetup(PPD::MiniParser &parser);
    std::string CustomPagePostscript() const;

    std::vector<PostscriptPage> mPages;
    int32_t mDefaultPageIndex = 0;
    bool mHasCustomPageSetup = false;
    double mMaxMediaWidth = 1000000.0, mMaxMediaHeight = 1000000.0;
    std::string mCustomPageCode;
    mutable std::map<std::string, CustomPageParam> mCustomParams;
};
