/// What the driver knows of a printer: its pages and resolutions, and how to find one by what a
/// person types.
#pragma once

#include "host/driver/Driver.h"
#include <optional>
#include <string>
#include <vector>

struct PrinterPage {
    std::string name, uiName;
    double llx = 0, lly = 0, urx = 0, ury = 0; ///< imageable area, points
    double sheetWidth = 0, sheetHeight = 0;    ///< of the paper, points; 0 when not told
    [[nodiscard]] double Width() const { return urx - llx; }
    [[nodiscard]] double Height() const { return ury - lly; }
};

struct PrinterResolution {
    std::string name, uiName;
    double xDpi = 0, yDpi = 0;
};

/// Limits of custom pages, in points.
struct CustomLimits {
    double minWidth = 0, maxWidth = 0, minHeight = 0, maxHeight = 0;
};

struct PrinterModel {
    bool builtIn = true; ///< no PPD file: the driver's own description
    bool colour = false;
    bool level2 = true;
    std::vector<PrinterPage> pages;
    std::vector<PrinterResolution> resolutions;
    size_t defaultPage = 0, defaultResolution = 0;
    std::optional<CustomLimits> custom;

    /// By name, display name, or either without regard to case. Null when there is none.
    [[nodiscard]] const PrinterPage *FindPage(const std::string &text) const;
    [[nodiscard]] const PrinterResolution *FindResolution(const std::string &text) const;
    /// The resolution to ask of the printer for a page of x by y dpi: the nearest that is at least
    /// as fine, else the default. Null when the printer has none.
    [[nodiscard]] const PrinterResolution *BestResolution(double x, double y) const;
};

/// The printer that a session prints with, and its PPD file: empty for the built-in printer.
struct SessionPrinter {
    PrinterModel model;
    std::string ppd;
};
[[nodiscard]] SessionPrinter PrinterOf(const DriverSession &session);

/// The model of the PPD file `ppd`; of the built-in printer when empty. Throws HostError (Input)
/// when the file is refused.
[[nodiscard]] PrinterModel ReadPrinterModel(const DriverBundle &bundle, const std::string &ppd);
