/// What the command line asks for. A choice that was not made is empty: the user's saved defaults
/// then hold.
#pragma once

#include "host/placement/PagePlacement.h"
#include "host/readers/pdf/PDFOptions.h"
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

struct JobOptions {
    std::vector<std::string> files;
    bool each = false;  ///< a document for each file
    std::string bundle; ///< --bundle; empty: found by itself

    std::optional<int> copies;
    std::optional<std::string> pageRange; ///< as written: "1-4,7,9-"
    std::optional<std::string> title;
    std::optional<std::string> ppd;
    std::optional<std::string> hotFolder;
    std::vector<std::string> outputWords; ///< what -o has been given: see LpOptions.h
    std::optional<std::string> output;
    std::optional<std::string> media;
    std::optional<std::string> resolution;
    std::optional<std::string> separation;
    std::optional<uint32_t> colourSpace; ///< kZELColourSpace...
    uint32_t intent = 1;                 ///< ColourIntent, relative
    std::optional<bool> eps;
    std::optional<bool> rotate;
    std::optional<bool> flipH;
    std::optional<bool> flipV;
    std::optional<bool> queue;

    PlacementWishes placement;      ///< but for `autoRotate`
    std::optional<bool> autoRotate; ///< empty: unless `rotate` is asked for
    PDFOptions pdf;
    bool separatePDF = false; ///< draw PDF pages in light and separate all of it
    std::string passwordFile; ///< holds pdf.password; empty: none

    int bandHeight = 0; ///< rows a band; 0: zelprint's choice
    std::string settings;
    std::string saveSettings;
    bool pageSetup = false;
    bool printDialog = false;
    bool force = false;        ///< replace a file that is no document
    bool allowDamaged = false; ///< print what a decoder makes of a damaged file
    bool builtInPrinter = false;
    bool noSync = false;
    bool allowLarge = false;
    bool dryRun = false;
    bool quiet = false;
    bool json = false;
};
