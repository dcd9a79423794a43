/// The resolutions that a printer offers.
#pragma once

#include "ppd/FeatureCode.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace PPD {
class MiniParser;
}

class PostscriptResolution {
public:
    PostscriptResolution() = default;
    PostscriptResolution(std::string name, std::string uiName, std::string postscript, double xDpi,
                         double yDpi)
        : mName(std::move(name)), mUIName(std::move(uiName)), mPostscript(std::move(postscript)),
          mXDpi(xDpi), mYDpi(yDpi) {}
    const std::string &GetName() const { return mName; }
    const std::string &GetUIName() const { return mUIName; }
    const std::string &GetPostscript() const { return mPostscript; }
    FeatureCode Code() const { return {FeatureKind::Resolution, mPostscript}; }
    double GetXDpi() const { return mXDpi; }
    double GetYDpi() const { return mYDpi; }

private:
    std::string mName, mUIName, mPostscript;
    double mXDpi = 0, mYDpi = 0;
};

class PostscriptResolutions {
public:
    /// The built-in description: "300dpi".
    PostscriptResolutions();
    /// Reads a PPD. Throws PPD::ParserError when "*DefaultResolution" is missing or malformed.
    explicit PostscriptResolutions(PPD::MiniParser &parser);

    int32_t NumResolutions() const;
    /// Throws PPD::ParserError when there is no such resolution.
    const PostscriptResolution &GetResolution(int32_t index) const;
    int32_t DefaultResolutionIndex() const;
    /// Index of the first resolution of exactly that name, or -1.
    int32_t FindResolutionByName(const std::string &name) const;

private:
    std::vector<PostscriptResolution> mResolutions;
    int32_t mDefaultResolutionIndex = 0;
};
