/// Printer descriptions of the tests' own.
#pragma once

#include <string>

/// What a description says; every member can be left out or changed.
struct TestPPD {
    std::string colour = "True";
    std::string level = "2";
    std::string defaultPage = "A4";
    std::string pages = "*PageSize A4/A4 paper: \"<</PageSize[595 842]>>setpagedevice\"\n"
                        "*PageSize Letter: \"<</PageSize[612 792]>>setpagedevice\"\n"
                        "*ImageableArea A4: \"10 12 585 830\"\n"
                        "*ImageableArea Letter: \"18 36 594 756\"\n";
    std::string defaultResolution = "600dpi";
    std::string resolutions = "*Resolution 300dpi: \"<</HWResolution[300 300]>>setpagedevice\"\n"
                              "*Resolution 600dpi: \"<</HWResolution[600 600]>>setpagedevice\"\n"
                              "*Resolution 1200x600dpi: "
                              "\"<</HWResolution[1200 600]>>setpagedevice\"\n";
    std::string custom; ///< nothing: no custom page sizes

    std::string Text() const {
        return "*PPD-Adobe: \"4.3\"\n*ColorDevice: " + colour + "\n*LanguageLevel: \"" + level +
               "\"\n*DefaultPageSize: " + defaultPage + "\n" + pages +
               "*DefaultResolution: " + defaultResolution + "\n" + resolutions + custom;
    }

    /// Custom pages of 100 to 800 by 200 to 1000 points.
    static std::string CustomPages() {
        return "*MaxMediaWidth: \"800\"\n*MaxMediaHeight: \"1000\"\n"
               "*CustomPageSize True: \"customcode\"\n"
               "*ParamCustomPageSize Width: 1 points 100 800\n"
               "*ParamCustomPageSize Height: 2 points 200 1000\n"
               "*ParamCustomPageSize WidthOffset: 3 points 0 0\n"
               "*ParamCustomPageSize HeightOffset: 4 points 0 0\n"
               "*ParamCustomPageSize Orientation: 5 int 0 0\n";
    }
};
