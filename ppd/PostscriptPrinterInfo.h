/// The printer model: built from a PPD file, or the built-in description.
#pragma once

#include "ppd/PostscriptPages.h"
#include "ppd/PostscriptResolutions.h"

#include <CoreFoundation/CoreFoundation.h>
#include <memory>
#include <string>

namespace PPD {
class MiniParser;
}

class PostscriptPrinterInfo {
public:
    /// The built-in description: A4, 300 dpi, no colour, Level 2. Says on the console that there is
    /// no PPD.
    PostscriptPrinterInfo();
    /// The same for who has chosen it, without a word.
    enum class Chosen { BuiltIn };
    explicit PostscriptPrinterInfo(Chosen);
    /// Reads a PPD file. Throws PPD::ParserError.
    explicit PostscriptPrinterInfo(CFURLRef ppdURL);
    /// A copy has a parser of its own. Throws PPD::ParserError when the file has gone since.
    PostscriptPrinterInfo(const PostscriptPrinterInfo &other);
    PostscriptPrinterInfo &operator=(const PostscriptPrinterInfo &other);
    ~PostscriptPrinterInfo();

    /// The PPD's file name, extension included; empty for the built-in description.
    const std::string &GetName() const { return mName; }
    /// The PPD file; null for the built-in description. Not retained.
    CFURLRef URL() const;
    /// What the file says its names are encoded in; empty when it does not.
    const std::string &GetLanguageEncoding() const { return mLanguageEncoding; }
    bool HasColour() const { return mHasColour; }
    bool HasPostscriptLevel2() const { return mHasPostscriptLevel2; }
    const PostscriptPages &Pages() const { return mPages; }
    const PostscriptResolutions &Resolutions() const { return mResolutions; }
    /// Says on the console that there is no PPD and takes back what one said of colour and level.
    void SetNoPPDInfo();

private:
    void ExtractInfo();

    std::unique_ptr<PPD::MiniParser> mParser; ///< null for the built-in description
    PostscriptPages mPages;
    PostscriptResolutions mResolutions;
    std::string mName, mLanguageEncoding;
    bool mHasColour = false;
    bool mHasPostscriptLevel2 = true;
};
