/// What libcups reads out of a PPD file.
#pragma once

#include <map>
#include <string>

struct CupsReading {
    struct Choice {
        std::string title, code;
        double area[4] = {}; ///< of a page
    };

    std::string refusal; ///< why libcups refuses the file; the rest is empty then
    std::map<std::string, Choice> pages, resolutions;
    std::string defaultPage, defaultResolution;
    bool customPages = false;
    double minWidth = 0, maxWidth = 0, minHeight = 0, maxHeight = 0; ///< of custom pages
    bool colour = false, level2 = false;
    // What the file says, of which libcups tells nothing.
    bool isUTF8 = false, opensResolutions = false;
};

CupsReading ReadWithCups(const std::string &path);
