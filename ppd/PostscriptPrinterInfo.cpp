#include "ppd/PostscriptPrinterInfo.h"

#include "ppd/MiniParser.h"
#include "ppd/ParserError.h"
#include "support/CFText.h"

namespace {

std::string FileName(CFURLRef url) {
    const CFRef<CFStringRef> name(CFURLCopyLastPathComponent(url));
    return UTF8Text(name.Get()).value_or("");
}

std::unique_ptr<PPD::MiniParser> CopyOf(const std::unique_ptr<PPD::MiniParser> &parser) {
    std::unique_ptr<PPD::MiniParser> copy;
    if (parser) copy = std::make_unique<PPD::MiniParser>(*parser);
    return copy;
}

} // namespace

PostscriptPrinterInfo::PostscriptPrinterInfo() {
    SetNoPPDInfo();
}

PostscriptPrinterInfo::PostscriptPrinterInfo(Chosen) {}

PostscriptPrinterInfo::PostscriptPrinterInfo(CFURLRef ppdURL)
    : mParser(std::make_unique<PPD::MiniParser>(ppdURL)), mName(FileName(ppdURL)) {
    ExtractInfo();
}

PostscriptPrinterInfo::PostscriptPrinterInfo(const PostscriptPrinterInfo &other)
    : mParser(CopyOf(other.mParser)), mPages(other.mPages), mResolutions(other.mResolutions),
      mName(other.mName), mLanguageEncoding(other.mLanguageEncoding), mHasColour(other.mHasColour),
      mHasPostscriptLevel2(other.mHasPostscriptLevel2) {}

PostscriptPrinterInfo &PostscriptPrinterInfo::operator=(const PostscriptPrinterInfo &other) {
    PostscriptPrinterInfo copy(other);
    mParser = std::move(copy.mParser);
    mPages = std::move(copy.mPages);
    mResolutions = std::move(copy.mResolutions);
    mName = std::move(copy.mName);
    mLanguageEncoding = std::move(copy.mLanguageEncoding);
    mHasColour = copy.mHasColour;
    mHasPostscriptLevel2 = copy.mHasPostscriptLevel2;
    return *this;
}

PostscriptPrinterInfo::~PostscriptPrinterInfo() = default;

CFURLRef PostscriptPrinterInfo::URL() const {
    return mParser ? mParser->URL() : nullptr;
}

void PostscriptPrinterInfo::SetNoPPDInfo() {
    CFShow(CFSTR("NO PPD INFO SET"));
    mHasColour = false;
    mHasPostscriptLevel2 = true;
}

void PostscriptPrinterInfo::ExtractInfo() {
    try {
        mPages = PostscriptPages(*mParser);
        mResolutions = PostscriptResolutions(*mParser);
    } catch (const PPD::ParserError &) {
        mParser->CheckWasReadWhole(); // what is missing may only not have been read
        throw;
    }
    mHasColour = mParser->BooleanKeyword("*ColorDevice", false);
    mHasPostscriptLevel2 = mParser->IntKeyword("*LanguageLevel", 0) > 1;
    try {
        mLanguageEncoding = mParser->GetStatement("*LanguageEncoding").GetValue();
    } catch (const PPD::ParserError &) {
        // A file need not say.
    }
    mParser->CheckWasReadWhole();
}
