/// The PPD file of a print queue in front of a hot folder: the pages and resolutions of the
/// printer, with its own code, and the choices that zelprint has for a document. Nothing else of
/// the printer's file is in it, since documents carry code for page and resolution only: trays or
/// duplex on offer would be a lie.
///
/// What the print system makes of it: PDFs and pictures come as they are (cupsFilter2), copies and
/// page ranges of PDFs have been made (cupsManualCopies), every document of a job comes by itself
/// (cupsSingleFile). CUPS' extensions of the format are documented with CUPS ("CUPS PPD
/// Extensions").
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

/// What the queue offers first, and under which name.
struct QueuePPDOptions {
    std::string info;                     ///< shown to people; empty: the printer's name
    bool eps = false;                     ///< EPS is the default format
    std::vector<std::string> separations; ///< besides "Standard"; the first is the default
};

/// The file's text. `printer` is what `zelprint printer-info --json` tells. Throws HostError
/// (Input) when the printer has no page or resolution that a PPD file can name.
[[nodiscard]] std::string MakeQueuePPD(const nlohmann::ordered_json &printer,
                                       const QueuePPDOptions &options);
