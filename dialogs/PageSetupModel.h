/// What the page-setup dialog shows and changes: a page setup as the dialog sees it.
#pragma once

#include "support/CFRef.h"
#include "support/Units.h"

#include <string>
#include <vector>

/// Limits of a custom page in points, as the record sees them (turned when it is rotated).
struct CustomDimensions {
    NumberRange width, height;
};

/// Where the page lies on the sheet, in points, as the printer sees the sheet: not turned. An EPS
/// file and custom paper are sheets of the page's own size.
struct PagePlace {
    double left = 0, bottom = 0; ///< margins; 0 on custom paper
    double width = 0, height = 0;
    double sheetWidth = 0, sheetHeight = 0;
};

/// The driver's side of the dialog. Nothing here throws: AppKit calls it, and no C++ exception may
/// reach AppKit. An object of the driver's: the window is in a module of its own, and so finds the
/// rules and the state behind them in the driver that hands the object over.
class PageSetupModel {
public:
    PageSetupModel() = default;
    PageSetupModel(const PageSetupModel &) = delete;
    PageSetupModel &operator=(const PageSetupModel &) = delete;
    virtual ~PageSetupModel() = default;

    /// Tags of the page pop-up besides a page's index.
    static constexpr int kCustomPageTag = -1;
    static constexpr int kNoPageTag = -2; ///< a printer without pages: nothing to select

    virtual const std::string &PrinterName() const = 0; ///< the PPD's file name, empty without one
    virtual std::string PrinterPath() const = 0;        ///< of the PPD file; empty without one
    virtual bool PrinterHasColour() const = 0;

    virtual double PaperWidth() const = 0; ///< points
    virtual double PaperHeight() const = 0;
    virtual void SetPaperSize(double width, double height) = 0;
    virtual PagePlace PlaceOnSheet() const = 0;
    virtual double XDpi() const = 0;
    virtual double YDpi() const = 0;
    virtual bool IsCustomPaper() const = 0;
    virtual bool IsRotated() const = 0;
    virtual bool IsFlippedHorizontally() const = 0;
    virtual bool IsFlippedVertically() const = 0;
    virtual bool IsEPS() const = 0;
    virtual int ColourSpace() const = 0;
    virtual void SetRotated(bool flag) = 0;
    virtual void SetFlippedHorizontally(bool flag) = 0;
    virtual void SetFlippedVertically(bool flag) = 0;
    virtual void SetEPS(bool flag) = 0;
    virtual void SetColourSpace(int colourSpace) = 0;

    /// EPS files come in any size; otherwise the printer must offer custom pages.
    virtual bool CanUseCustomPageSizes() const = 0;
    virtual CustomDimensions CustomLimits() const = 0;

    /// Makes the record's page one that the printer offers: a custom size clamped to the limits, or
    /// a named page (the default one when the record's is unknown) with that page's size. Returns
    /// the tag to select.
    virtual int SyncPage() = 0;
    /// Makes the record's resolution name one that the printer offers; returns its index, or -1.
    virtual int SyncResolution() = 0;

    virtual void ChooseCustomPage() = 0;
    virtual void ChoosePage(int index) = 0; ///< ignored unless there is such a page
    virtual void ChooseResolution(int index) = 0;

    /// Is there a page of the host to take the size from?
    virtual bool HasDocumentSize() const = 0;
    virtual bool DocumentFitsOnCustomPaper() const = 0;
    virtual void SetSizeFromDocument() = 0;

    /// Follows the typing of a width and a height. False when either text is no number within the
    /// limits; nothing has changed then. Otherwise the record has the page whose size reads exactly
    /// the same in that unit, or custom paper of the typed size; `*tag` is the one to select.
    virtual bool TypeSize(const std::string &width, const std::string &height, int unit,
                          int *tag) = 0;
    /// Dots per inch.
    virtual NumberRange ResolutionLimits() const = 0;
    /// Follows the typing of a resolution; false when it is no number within the limits.
    virtual bool TypeResolution(const std::string &text) = 0;

    /// Display names for the pop-ups, UTF-8, in the printer's order; "PPD Error" for one that is no
    /// text in the encoding that its file declares. A PPD error empties the list and is told in
    /// `*error`.
    virtual std::vector<std::string> PageTitles(std::string *error) const = 0;
    virtual std::vector<std::string> ResolutionTitles(std::string *error) const = 0;

    /// The separation's name; one that is not UTF-8 is emptied in the record.
    virtual CFRef<CFStringRef> SeparationName() = 0;
    virtual void SetSeparationName(CFStringRef name) = 0;
    /// Number of separations to choose from, "Standard" included.
    virtual int SeparationCount() const = 0;
    virtual CFStringRef SeparationNameAt(int index) const = 0; ///< not retained
    /// Index of the first separation of that name, 0 ("Standard") when there is none.
    virtual int SeparationIndex(CFStringRef name) const = 0;
    virtual bool IsGoodSeparation(CFStringRef name) const = 0;

    /// Replaces the printer by the one of a PPD file and saves that file as the user's choice. A
    /// file that is refused gives the built-in printer, after telling the user why.
    virtual void LoadPrinter(CFURLRef ppd) = 0;
    /// After a cancelled dialog: the user's choice is again the file that it was before. The driver
    /// that showed the dialog keeps the printer.
    virtual void RestoreSavedPrinter() = 0;

    /// Is it a regular file that the PPD reader accepts?
    virtual bool IsPPDFile(const std::string &path) const = 0;

    /// A DialogUnit; and whether documents go to the default print queue: what the dialog begins
    /// with, and what is saved when it has been confirmed.
    virtual int SavedUnit() const = 0;
    virtual bool SendsToPrintQueue() const = 0;
    virtual void SavePreferences(int unit, bool sendToPrintQueue) = 0;
};
