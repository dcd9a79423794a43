/// Reads and changes the choices in a print record, one at a time. Names are cut to what the record
/// holds.
#pragma once

#include "host/driver/Driver.h"
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

/// As messages tell it: from the lowest to the highest of them.
[[nodiscard]] std::string RangeOfDpi();

/// A view of a handle with a record, which the driver has made; both must outlive it. Throws
/// HostError when the driver finds none.
class Record {
public:
    Record(const DriverBundle &bundle, Handle handle) : mBundle(bundle), mHandle(handle) {}

    [[nodiscard]] RecordPage Page() const;
    void SetPage(const RecordPage &page);
    [[nodiscard]] RecordResolution Resolution() const;
    void SetResolution(const RecordResolution &resolution);
    [[nodiscard]] uint32_t ColourSpace() const { return Settings().colourSpace; }
    void SetColourSpace(uint32_t colourSpace) { Set(&ZELRecordSettings::colourSpace, colourSpace); }
    [[nodiscard]] bool FlipH() const { return Settings().mirrorHorizontal != 0; }
    [[nodiscard]] bool FlipV() const { return Settings().mirrorVertical != 0; }
    [[nodiscard]] bool Rotated() const { return Settings().rotated != 0; }
    [[nodiscard]] bool EPS() const { return Settings().eps != 0; }
    void SetFlipH(bool on) { Set(&ZELRecordSettings::mirrorHorizontal, uint8_t{on}); }
    void SetFlipV(bool on) { Set(&ZELRecordSettings::mirrorVertical, uint8_t{on}); }
    void SetRotated(bool on) { Set(&ZELRecordSettings::rotated, uint8_t{on}); }
    void SetEPS(bool on) { Set(&ZELRecordSettings::eps, uint8_t{on}); }
    [[nodiscard]] int Copies() const { return Settings().copies; }
    void SetCopies(int copies) { Set(&ZELRecordSettings::copies, copies); }
    void SetPages(int first, int last);
    /// Empty means "Standard".
    [[nodiscard]] std::string Separation() const { return Settings().separationName; }
    /// False, and nothing is changed, when the name is longer than the record's 255 bytes.
    [[nodiscard]] bool SetSeparation(const std::string &name);

private:
    [[nodiscard]] ZELRecordSettings Settings() const;
    /// The printer is not asked: the job is not planned yet.
    void Change(const ZELRecordSettings &settings);
    template <typename T>
    void Set(T ZELRecordSettings::*field, T value) {
        ZELRecordSettings settings = Settings();
        settings.*field = value;
        Change(settings);
    }

    const DriverBundle &mBundle;
    Handle mHandle;
};
