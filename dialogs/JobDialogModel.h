/// What the print dialog shows, and what the user decides there.
#pragma once

#include "support/CFRef.h"

#include <cstdint>
#include <optional>
#include <string>

/// What the dialog says about the document besides its name.
struct JobSummary {
    std::string printer;  ///< UTF-8; empty: none was chosen
    std::string page;     ///< UTF-8; empty: a custom one
    double width, height; ///< points
    double xDpi, yDpi;    ///< for sizes in pixels
    int unit;             ///< a DialogUnit
    int pages;            ///< 0: not known
};

/// A job as the dialog shows it.
struct JobDescription {
    CFStringRef title;                   ///< of the window
    CFStringRef suggestedName;           ///< of the file, for the save panel; may be null
    CFStringRef fileExtension;           ///< "ps" or "eps"
    const JobSummary *summary = nullptr; ///< null: only the document's name is said
};

/// What the dialog comes up with, and what the user has made of it.
struct JobChoices {
    CFRef<CFURLRef> hotFolder;             ///< null: none
    int16_t firstPage = 1, lastPage = 999; ///< 1 to 999: all pages
    std::optional<int16_t> copies;         ///< nothing: the dialog asks for no copies
    std::optional<bool> collate;           ///< asked for with copies only
    CFRef<CFStringRef> fileName;           ///< chosen in the save panel; null: none
};
