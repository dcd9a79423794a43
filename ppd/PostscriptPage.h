/// One page size of a printer.
#pragma once

#include "ppd/FeatureCode.h"

#include <string>
#include <utility>

class PostscriptPage {
public:
    PostscriptPage() = default;
    PostscriptPage(std::string name, std::string uiName, std::string postscript, double llx,
                   double lly, double urx, double ury)
        : mName(std::move(name)), mUIName(std::move(uiName)), mPostscript(std::move(postscript)),
          mllx(llx), mlly(lly), murx(urx), mury(ury) {}

    const std::string &GetName() const { return mName; }
    const std::string &GetUIName() const { return mUIName; }
    /// The code that selects the page.
    const std::string &GetPostscript() const { return mPostscript; }
    FeatureCode Code() const { return {FeatureKind::Page, mPostscript}; }
    /// The imageable area in points; paper dimensions are not kept.
    double Getllx() const { return mllx; }
    double Getlly() const { return mlly; }
    double Geturx() const { return murx; }
    double Getury() const { return mury; }

private:
    std::string mName, mUIName, mPostscript;
    double mllx = 0, mlly = 0, murx = 0, mury = 0;
};
