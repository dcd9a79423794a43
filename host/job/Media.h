/// Pages and resolutions as a person types them.
#pragma once

#include "host/driver/PrinterModel.h"
#include "host/driver/Record.h"
#include <optional>
#include <string>

/// A size written WxH with unit pt, mm or in ("210x297mm", "8.5x11in"), in points. Empty when the
/// text is no such size.
struct PaperSize {
    double width = 0, height = 0;
};
[[nodiscard]] std::optional<PaperSize> ParsePaperSize(const std::string &text);

/// A resolution written N or NxM, with or without "dpi" behind it. Empty when it is none, or not
/// within the driver's limits.
struct Dpi {
    double x = 0, y = 0;
};
[[nodiscard]] std::optional<Dpi> ParseDpi(const std::string &text);

/// The page that --media asks for, on paper as it lies in the printer. A custom size is checked
/// against the printer's limits unless `eps`. Throws HostError (Usage) that names the choices.
[[nodiscard]] RecordPage ChooseMedia(const PrinterModel &printer, const std::string &text,
                                     bool eps);

/// The resolution that --resolution asks for: one of the printer's by name, or any number of dpi,
/// with the nearest finer one of the printer's. Throws HostError (Usage).
[[nodiscard]] RecordResolution ChooseResolution(const PrinterModel &printer,
                                                const std::string &text);
