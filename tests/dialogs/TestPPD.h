/// PPD files that the dialogs' tests work with.
#pragma once

#include <string>

/// What a test varies in a PPD file.
struct PPDOptions {
    bool hasColour = true;
    bool hasCustomPages = true;
    bool hasPages = true;
    double maxWidth = 1000, maxHeight = 2000; ///< of a custom page, points
    std::string extra;                        ///< further lines
};

/// Pages A4 (595 x 842 points), Letter (612 x 792) and Tabloid (792 x 1224), Letter being the
/// default one; resolutions "1200x600dpi", "300dpi" (the default) and "600dpi" ("600 DPI fine").
std::string PPDText(const PPDOptions &options = {});

/// Lines of `count` more pages, P1000/Page number 1000 and so on: each has an index as an entry in
/// the menu, after those of PPDText, which come in the order of their names (A4, Letter, P1000
/// ...).
std::string ManyPages(int count);

/// Writes the text to folder/name; returns the path.
std::string WriteFile(const std::string &folder, const std::string &name, const std::string &text);
