/// The print record that the page-setup dialog edits, and the rules it follows. No widgets.
#pragma once

#include "dialogs/StyleDialog.h"
#include "dialogs/Units.h"
#include "support/CFRef.h"

#include <CoreFoundation/CoreFoundation.h>
#include <functional>
#include <string>
#include <vector>

/// Limits of a custom page in points, as the record sees them (turned when it is rotated).
struct CustomDimensions {
    NumberRange width, height;
};

/// Where the page lies on the sheet, in points, as the printer sees the sheet: not turned.
struct PagePlace {
    double left = 0, bottom = 0; ///< margins; 0 on custom paper
    double width = 0, height = 0;
};

/// A copy of a record together with what it is edited with. Nothing here throws: AppKit calls it,
/// and no C++ exception may reach AppKit.
///
/// Virtual although nothing is derived from it: the window that edits the record is in a module of
/// its own and so finds this code, and the state behind it, in the driver that hands the object
/// over.
class PageSetup {
public:
    PageSetup() = default;
    PageSetup(const PageSetup &) = delete;
    PageSetup &operator=(const PageSetup &) = delete;
    virtual ~PageSetup() = default;

    /// Tags of the page pop-up besides a page's index.
    static constexpr int kCustomPageTag = -1;
    static constexpr int kNoPageTag = -2; ///< a printer without pages: nothing to select

    /// What it works on; `params` must outlive it.
    virtual void Use(const PSHPrint &record, PSStyleParams *params);
    const PSHPrint &Record() const { return mRecord; }
    virtual const std::string &PrinterName() const; ///< the PPD's file name, empty without one
    virtual bool PrinterHasColour() const;

    virtual double PaperWidth() const; ///< points
    virtual double PaperHeight() const;
    virtual void SetPaperSize(double width, double height);
    virtual PagePlace PlaceOnSheet() const;
    virtual double XDpi() const;
    virtual double YDpi() const;
    bool IsCustomPaper() const { return mRecord.mPageIsCustom_be != 0; }
    bool IsRotated() const { return mRecord.mRotated_be != 0; }
    bool IsFlippedHorizontally() const { return mRecord.mFlipH_be != 0; }
    bool IsFlippedVertically() const { return mRecord.mFlipV_be != 0; }
    bool IsEPS() const { return mRecord.mEPSFormat_be != 0; }
    virtual int ColourSpace() const;
    virtual void SetRotated(bool flag);
    virtual void SetFlippedHorizontally(bool flag);
    virtual void SetFlippedVertically(bool flag);
    virtual void SetEPS(bool flag);
    virtual void SetColourSpace(int colourSpace);

    /// EPS files come in any size; otherwise the printer must offer custom pages.
    virtual bool CanUseCustomPageSizes() const;
    virtual CustomDimensions CustomLimits() const;

    /// Makes the record's page one that the printer offers: a custom size clamped to the limits, or
    /// a named page (the default one when the record's is unknown) with that page's size. Returns
    /// the tag to select.
    virtual int SyncPage();
    /// Makes the record's resolution name one that the printer offers; returns its index, or -1.
    virtual int SyncResolution();

    virtual void ChooseCustomPage();
    virtual void ChoosePage(int index); ///< ignored unless there is such a page
    virtual void ChooseResolution(int index);

    /// Is there a page of the host to take the size from?
    virtual bool HasDocumentSize() const;
    virtual bool DocumentFitsOnCustomPaper() const;
    virtual void SetSizeFromDocument();

    /// Follows the typing of a width and a height. False when either text is no number within the
    /// limits; nothing has changed then. Otherwise the record has the page whose size reads exactly
    /// the same in that unit, or custom paper of the typed size; `*tag` is the one to select.
    virtual bool TypeSize(const std::string &width, const std::string &height, int unit, int *tag);
    /// Follows the typing of a resolution; false when it is no number within the host's limits.
    virtual bool TypeResolution(const std::string &text);

    /// Display names for the pop-ups, UTF-8, in the printer's order; "PPD Error" for one that is no
    /// text in the encoding that its file declares. A PPD error empties the list and is told in
    /// `*error`.
    virtual std::vector<std::string> PageTitles(std::string *error) const;
    virtual std::vector<std::string> ResolutionTitles(std::string *error) const;

    /// The separation's name; one that is not UTF-8 is emptied in the record.
    virtual CFRef<CFStringRef> SeparationName();
    virtual void SetSeparationName(CFStringRef name);
    /// Number of separations to choose from, "Standard" included.
    virtual int SeparationCount() const;
    virtual CFStringRef SeparationNameAt(int index) const; ///< not retained
    /// Index of the first separation of that name, 0 ("Standard") when there is none.
    virtual int SeparationIndex(CFStringRef name) const;
    virtual bool IsGoodSeparation(CFStringRef name) const;

    /// Replaces the printer by the one of a PPD file and saves that file as the user's choice. A
    /// file that is refused gives the built-in printer, after telling the user why.
    virtual void LoadPrinter(CFURLRef ppd, CFStringRef preferencesDomain);
    /// After a cancelled dialog: the user's choice is again the file that it was before. The driver
    /// that showed the dialog keeps the printer.
    virtual void RestoreSavedPrinter(CFStringRef preferencesDomain);

    /// Is it a regular file that the PPD reader accepts?
    virtual bool IsPPDFile(const std::string &path) const;

private:
    const PostscriptPrinterInfo &Printer() const { return **mParams->printerInfo; }
    std::string Title(const std::string &uiName) const;
    void UsePage(int index);
    void UseCustomSize(double width, double height);
    int PageWithSizeText(const std::string &width, const std::string &height, int unit,
                         double widthPoints, double heightPoints) const;

    PSHPrint mRecord = {};
    PSStyleParams *mParams = nullptr;
    bool mSavedPrinterIsReplaced = false;
    CFRef<CFPropertyListRef> mSavedPrinter; ///< the preference before the first replacement
};

/// The result of `list`; a PPD::ParserError that it throws empties the result and becomes "PPD
/// Error: " and its message.
[[nodiscard]] std::vector<std::string>
TitlesOrError(const std::function<std::vector<std::string>()> &list, std::string *error);
