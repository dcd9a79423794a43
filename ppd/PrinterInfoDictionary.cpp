#include "ppd/PrinterInfoDictionary.h"

#include "ZELExtensions.h"
#include "ppd/LanguageEncoding.h"
#include "ppd/ParserError.h"
#include "support/CFText.h"

#include <initializer_list>
#include <string>

namespace {

CFRef<CFNumberRef> NumberOf(double value) {
    return CFRef<CFNumberRef>(CFNumberCreate(nullptr, kCFNumberDoubleType, &value));
}

CFRef<CFNumberRef> NumberOf(int32_t value) {
    return CFRef<CFNumberRef>(CFNumberCreate(nullptr, kCFNumberSInt32Type, &value));
}

class Array {
public:
    void Append(CFTypeRef value) {
        if (value) CFArrayAppendValue(mArray.Get(), value);
    }
    CFTypeRef Get() const { return mArray.Get(); }

private:
    CFRef<CFMutableArrayRef> mArray{CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks)};
};

class Dictionary {
public:
    void Set(CFStringRef key, CFTypeRef value) {
        if (value) CFDictionarySetValue(mDictionary.Get(), key, value);
    }
    void Set(CFStringRef key, const std::string &text) {
        Set(key, TextOfUnknownEncoding(text).Get());
    }
    void Set(CFStringRef key, double value) { Set(key, NumberOf(value).Get()); }
    void Set(CFStringRef key, int32_t value) { Set(key, NumberOf(value).Get()); }
    void Set(CFStringRef key, bool value) { Set(key, value ? kCFBooleanTrue : kCFBooleanFalse); }
    CFTypeRef Get() const { return mDictionary.Get(); }
    CFRef<CFDictionaryRef> Finished() { return CFRef<CFDictionaryRef>(mDictionary.Detach()); }

private:
    CFRef<CFMutableDictionaryRef> mDictionary{CFDictionaryCreateMutable(
        nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks)};
};

/// A page or a resolution: what both have.
template <class Choice>
Dictionary NamedChoice(const Choice &choice, const std::string &languageEncoding) {
    Dictionary dictionary;
    dictionary.Set(CFSTR("name"), choice.GetName());
    const CFRef<CFStringRef> shown = PPD::DecodeText(choice.GetUIName(), languageEncoding);
    dictionary.Set(CFSTR("ui_name"),
                   shown ? shown.Get() : TextOfUnknownEncoding(choice.GetUIName()).Get());
    dictionary.Set(CFSTR("postscript"), choice.GetPostscript());
    return dictionary;
}

Array ListOf(std::initializer_list<double> numbers) {
    Array array;
    for (const double number : numbers)
        array.Append(NumberOf(number).Get());
    return array;
}

Array PagesOf(const PostscriptPages &pages, const PPD::SheetSizes &sheets,
              const std::string &languageEncoding) {
    Array array;
    for (int32_t i = 0; i < pages.NumPages(); ++i) {
        const PostscriptPage &page = pages.GetPage(i);
        Dictionary dictionary = NamedChoice(page, languageEncoding);
        dictionary.Set(CFSTR("area"),
                       ListOf({page.Getllx(), page.Getlly(), page.Geturx(), page.Getury()}).Get());
        const auto sheet = sheets.find(page.GetName());
        if (sheet != sheets.end())
            dictionary.Set(CFSTR("sheet"),
                           ListOf({sheet->second.width, sheet->second.height}).Get());
        array.Append(dictionary.Get());
    }
    return array;
}

Array ResolutionsOf(const PostscriptResolutions &resolutions, const std::string &languageEncoding) {
    Array array;
    for (int32_t i = 0; i < resolutions.NumResolutions(); ++i) {
        const PostscriptResolution &resolution = resolutions.GetResolution(i);
        Dictionary dictionary = NamedChoice(resolution, languageEncoding);
        dictionary.Set(CFSTR("x_dpi"), resolution.GetXDpi());
        dictionary.Set(CFSTR("y_dpi"), resolution.GetYDpi());
        array.Append(dictionary.Get());
    }
    return array;
}

Array ParamsOf(const PostscriptPages &pages) {
    Array array;
    for (const auto &[name, param] : pages.GetCustomPageParams()) {
        Dictionary dictionary;
        dictionary.Set(CFSTR("name"), name);
        dictionary.Set(CFSTR("units"), param.GetUnits());
        dictionary.Set(CFSTR("index"), param.GetStackIndex());
        dictionary.Set(CFSTR("min"), param.GetMinValue());
        dictionary.Set(CFSTR("max"), param.GetMaxValue());
        array.Append(dictionary.Get());
    }
    return array;
}

Dictionary CustomPageOf(const PostscriptPages &pages) {
    Dictionary dictionary;
    dictionary.Set(CFSTR("code"), pages.GetCustomPageCode());
    // Before the limits, whose look-ups create the parameters that the file does not have.
    dictionary.Set(CFSTR("params"), ParamsOf(pages).Get());
    double minWidth = 0;
    double maxWidth = 0;
    double minHeight = 0;
    double maxHeight = 0;
    pages.GetCustomPageLimits(minWidth, maxWidth, minHeight, maxHeight);
    dictionary.Set(CFSTR("min_width"), minWidth);
    dictionary.Set(CFSTR("max_width"), maxWidth);
    dictionary.Set(CFSTR("min_height"), minHeight);
    dictionary.Set(CFSTR("max_height"), maxHeight);
    return dictionary;
}

} // namespace

CFRef<CFDictionaryRef> CreatePrinterInfoDictionary(const PostscriptPrinterInfo &info,
                                                   const PPD::SheetSizes &sheets) {
    // Asking for the limits changes the pages; the caller's stay as they are.
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
    const PostscriptPages pages = info.Pages();
    Dictionary dictionary;
    dictionary.Set(CFSTR("name"), info.GetName());
    dictionary.Set(CFSTR("colour"), info.HasColour());
    dictionary.Set(CFSTR("level2"), info.HasPostscriptLevel2());
    dictionary.Set(CFSTR("pages"), PagesOf(pages, sheets, info.GetLanguageEncoding()).Get());
    dictionary.Set(CFSTR("default_page"), pages.DefaultPageIndex());
    if (pages.HasCustomPageSetup()) dictionary.Set(CFSTR("custom"), CustomPageOf(pages).Get());
    dictionary.Set(CFSTR("resolutions"),
                   ResolutionsOf(info.Resolutions(), info.GetLanguageEncoding()).Get());
    dictionary.Set(CFSTR("default_resolution"), info.Resolutions().DefaultResolutionIndex());
    return dictionary.Finished();
}

CFRef<CFDictionaryRef> CreatePrinterInfoDictionary(const PostscriptPrinterInfo &info) {
    PPD::SheetSizes sheets;
    try {
        sheets = PPD::SheetSizesOf(info.URL());
    } catch (const PPD::ParserError &) {
        // What has been read of the printer before is good all the same.
    }
    return CreatePrinterInfoDictionary(info, sheets);
}

CFDictionaryRef ZELPrCopyPrinterInfo(CFURLRef ppd, CFStringRef *message) {
    if (message) *message = nullptr;
    std::string refusal = "The printer description cannot be read";
    try {
        const PostscriptPrinterInfo info =
            ppd ? PostscriptPrinterInfo(ppd)
                : PostscriptPrinterInfo(PostscriptPrinterInfo::Chosen::BuiltIn);
        return CreatePrinterInfoDictionary(info, PPD::SheetSizesOf(ppd)).Detach();
    } catch (const PPD::ParserError &error) {
        refusal = error.ErrorMessage();
    } catch (...) {
        // Nothing leaves an entry point but its result.
    }
    if (message) *message = TextOfUnknownEncoding(refusal).Detach();
    return nullptr;
}
