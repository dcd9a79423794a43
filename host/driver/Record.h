/// Reads and changes the fields of a print record in a handle. Strings are cut to what the record
/// holds; numbers are native here and big-endian in the record.
#ifndef ZEL_HOST_RECORD_H
#define ZEL_HOST_RECORD_H

#include "ZELPrint.h"
#include <string>

struct RecordPage {
    std::string name; ///< empty for a custom page
    bool custom = false;
    double width = 0, height = 0; ///< points
};

struct RecordResolution {
    std::string name;
    double x = 0, y = 0; ///< dots per inch
};

/// Is it a number of dots per inch that a record may have?
[[nodiscard]] constexpr bool IsGoodDpi(double dpi) {
    return dpi >= double{kZELMinimumDpi} && dpi <= double{kZELMaximumDpi};
}

/// A view of a handle of at least 416 bytes, which must outlive it.
class Record {
public:
    explicit Record(Handle handle) : mHandle(handle) {}

    [[nodiscard]] RecordPage Page() const;
    void SetPage(const RecordPage &page);
    [[nodiscard]] RecordResolution Resolution() const;
    void SetResolution(const RecordResolution &resolution);
    [[nodiscard]] uint32_t ColourSpace() const;
    void SetColourSpace(uint32_t colourSpace);
    [[nodiscard]] bool FlipH() const { return Fields().mFlipH_be != 0; }
    [[nodiscard]] bool FlipV() const { return Fields().mFlipV_be != 0; }
    [[nodiscard]] bool Rotated() const { return Fields().mRotated_be != 0; }
    [[nodiscard]] bool EPS() const { return Fields().mEPSFormat_be != 0; }
    void SetFlipH(bool on);
    void SetFlipV(bool on);
    void SetRotated(bool on);
    void SetEPS(bool on);
    [[nodiscard]] int Copies() const;
    void SetCopies(int copies);
    void SetPages(int first, int last);
    /// Empty means "Standard".
    [[nodiscard]] std::string Separation() const;
    /// False, and nothing is changed, when the name is longer than the record's 255 bytes.
    [[nodiscard]] bool SetSeparation(const std::string &name);

private:
    [[nodiscard]] PSHPrint &Fields() const { return *reinterpret_cast<PSHPrint *>(*mHandle); }
    Handle mHandle;
};

#endif
