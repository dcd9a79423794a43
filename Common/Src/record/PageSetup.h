/// The print record that the page-setup dialog edits, and the rules it follows. No widgets.
#pragma once

#include "Common/Src/record/PageInfo.h"
#include "PSHPrint.h"
#include "dialogs/PageSetupModel.h"
#include "ppd/SheetSizes.h"

#include <functional>
#include <optional>

class PostscriptPrinterInfo;
struct Separations;

/// What a record is edited with.
struct PageSetupSources {
    PageInfo_tag document;                     ///< the host's page
    const Separations *separations;            ///< to choose from; null: only "Standard"
    PostscriptPrinterInfo **printer;           ///< replaced when the user picks another PPD file
    CFStringRef preferencesDomain;             ///< where the user's choices are saved
    std::optional<bool> sendToPrintQueue = {}; ///< shown instead of the user's saved choice
};

/// A copy of a record together with what it is edited with.
class PageSetup final : public PageSetupModel {
public:
    /// What it works on; `sources` must outlive it.
    void Use(const PSHPrint &record, const PageSetupSources *sources);
    const PSHPrint &Record() const { return mRecord; }

    const std::string &PrinterName() const override;
    std::string PrinterPath() const override;
    bool PrinterHasColour() const override;
    double PaperWidth() const override;
    double PaperHeight() const override;
    void SetPaperSize(double width, double height) override;
    PagePlace PlaceOnSheet() const override;
    double XDpi() const override;
    double YDpi() const override;
    bool IsCustomPaper() const override { return mRecord.mPageIsCustom_be != 0; }
    bool IsRotated() const override { return mRecord.mRotated_be != 0; }
    bool IsFlippedHorizontally() const override { return mRecord.mFlipH_be != 0; }
    bool IsFlippedVertically() const override { return mRecord.mFlipV_be != 0; }
    bool IsEPS() const override { return mRecord.mEPSFormat_be != 0; }
    int ColourSpace() const override;
    void SetRotated(bool flag) override;
    void SetFlippedHorizontally(bool flag) override;
    void SetFlippedVertically(bool flag) override;
    void SetEPS(bool flag) override;
    void SetColourSpace(int colourSpace) override;
    bool CanUseCustomPageSizes() const override;
    CustomDimensions CustomLimits() const override;
    int SyncPage() override;
    int SyncResolution() override;
    void ChooseCustomPage() override;
    void ChoosePage(int index) override;
    void ChooseResolution(int index) override;
    bool HasDocumentSize() const override;
    bool DocumentFitsOnCustomPaper() const override;
    void SetSizeFromDocument() override;
    bool TypeSize(const std::string &width, const std::string &height, int unit, int *tag) override;
    NumberRange ResolutionLimits() const override;
    bool TypeResolution(const std::string &text) override;
    std::vector<std::string> PageTitles(std::string *error) const override;
    std::vector<std::string> ResolutionTitles(std::string *error) const override;
    CFRef<CFStringRef> SeparationName() override;
    void SetSeparationName(CFStringRef name) override;
    int SeparationCount() const override;
    CFStringRef SeparationNameAt(int index) const override;
    int SeparationIndex(CFStringRef name) const override;
    bool IsGoodSeparation(CFStringRef name) const override;
    void LoadPrinter(CFURLRef ppd) override;
    void RestoreSavedPrinter() override;
    bool IsPPDFile(const std::string &path) const override;
    int SavedUnit() const override;
    bool SendsToPrintQueue() const override;
    void SavePreferences(int unit, bool sendToPrintQueue) override;

private:
    const PostscriptPrinterInfo &Printer() const { return **mSources->printer; }
    std::string Title(const std::string &uiName) const;
    void UsePage(int index);
    void UseCustomSize(double width, double height);
    int PageWithSizeText(const std::string &width, const std::string &height, int unit,
                         double widthPoints, double heightPoints) const;

    const PPD::SheetSizes &Sheets() const;
    void PlaceSheet(const std::string &page, PagePlace &place) const;

    PSHPrint mRecord = {};
    const PageSetupSources *mSources = nullptr;
    mutable std::optional<PPD::SheetSizes> mSheets; ///< the printer's, read when first asked for
    bool mSavedPrinterIsReplaced = false;
    CFRef<CFPropertyListRef> mSavedPrinter; ///< the preference before the first replacement
};

/// The result of `list`; a PPD::ParserError that it throws empties the result and becomes "PPD
/// Error: " and its message.
[[nodiscard]] std::vector<std::string>
TitlesOrError(const std::function<std::vector<std::string>()> &list, std::string *error);
