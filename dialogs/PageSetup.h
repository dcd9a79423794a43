/// The print record that the page-setup dialog edits, and the rules it follows. No widgets.
#pragma once

#include "Common/Src/CFRef.h"
#include "dialogs/StyleDialog.h"
#include "dialogs/Units.h"

#include <CoreFoundation/CoreFoundation.h>
#include <functional>
#include <string>
#include <vector>

/// Limits of a custom page in points, as the record sees them (turned when it is rotated).
struct CustomDimensions {
    NumberRange width, height;
};

/// A copy of a record together with what it is edited with. Nothing here throws: AppKit calls it,
/// and no C++ exception may reach AppKit.
class PageSetup {
public:
    /// Tags of the page pop-up besides a page's index.
    static constexpr int kCustomPageTag = -1;
    static constexpr int kNoPageTag = -2; ///< a printer without pages: nothing to select

    /// What it works on; `params` must outlive it.
    void Use(const PSHPrint &record, PSStyleParams *params);
    const PSHPrint &Record() const { return mRecord; }
    const PostscriptPrinterInfo &Printer() const { return **mParams->printerInfo; }

    double PaperWidth() const; ///< points
    double PaperHeight() const;
    void SetPaperSize(double width, double height);
    double XDpi() const;
    double YDpi() const;
    bool IsCustomPaper() const { return mRecord.mPageIsCustom_be != 0; }
    bool IsRotated() const { return mRecord.mRotated_be != 0; }
    bool IsFlippedHorizontally() const { return mRecord.mFlipH_be != 0; }
    bool IsFlippedVertically() const { return mRecord.mFlipV_be != 0; }
    bool IsEPS() const { return mRecord.mEPSFormat_be != 0; }
    int ColourSpace() const;
    void SetRotated(bool flag);
    void SetFlippedHorizontally(bool flag);
    void SetFlippedVertically(bool flag);
    void SetEPS(bool flag);
    void SetColourSpace(int colourSpace);

    /// EPS files come in any size; otherwise the printer must offer custom pages.
    bool CanUseCustomPageSizes() const;
    CustomDimensions CustomLimits() const;

    /// Makes the record's page one that the printer offers: a custom size clamped to the limits, or
    /// a named page (the default one when the record's is unknown) with that page's size. Returns
    /// the tag to select.
    int SyncPage();
    /// Makes the record's resolution name one that the printer offers; returns its index, or -1.
    int SyncResolution();

    void ChooseCustomPage();
    void ChoosePage(int index); ///< ignored unless there is such a page
    void ChooseResolution(int index);

    /// Is there a page of the host to take the size from?
    bool HasDocumentSize() const;
    bool DocumentFitsOnCustomPaper() const;
    void SetSizeFromDocument();

    /// Follows the typing of a width and a height. False when either text is no number within the
    /// limits; nothing has changed then. Otherwise the record has the typed size and the name of
    /// the page whose size reads exactly the same in that unit, or custom paper; `*tag` is the one
    /// to select.
    bool TypeSize(const std::string &width, const std::string &height, int unit, int *tag);
    /// Follows the typing of a resolution; false when it is no number within the host's limits.
    bool TypeResolution(const std::string &text);

    /// Display names for the pop-ups, in the printer's order. A PPD error empties the list and is
    /// told in `*error`.
    std::vector<std::string> PageTitles(std::string *error) const;
    std::vector<std::string> ResolutionTitles(std::string *error) const;

    /// The separation's name; one that is not UTF-8 is emptied in the record.
    CFRef<CFStringRef> SeparationName();
    void SetSeparationName(CFStringRef name);
    /// Number of separations to choose from, "Standard" included.
    int SeparationCount() const;
    CFStringRef SeparationNameAt(int index) const; ///< not retained
    /// Index of the first separation of that name, 0 ("Standard") when there is none.
    int SeparationIndex(CFStringRef name) const;
    bool IsGoodSeparation(CFStringRef name) const;

    /// Replaces the printer by the one of a PPD file and saves that file as the user's choice. A
    /// file that is refused gives the built-in printer, after telling the user why.
    void LoadPrinter(CFURLRef ppd, CFStringRef preferencesDomain);

private:
    void UseNamedPage(int index);
    void UseCustomSize(double width, double height);
    int PageWithSizeText(const std::string &width, const std::string &height, int unit,
                         double widthPoints, double heightPoints) const;

    PSHPrint mRecord = {};
    PSStyleParams *mParams = nullptr;
};

/// Is it a regular file that the PPD reader accepts?
[[nodiscard]] bool IsPPDFile(const std::string &path);

/// The result of `list`; a PPD::ParserError that it throws empties the result and becomes "PPD
/// Error: " and its message.
[[nodiscard]] std::vector<std::string>
TitlesOrError(const std::function<std::vector<std::string>()> &list, std::string *error);
