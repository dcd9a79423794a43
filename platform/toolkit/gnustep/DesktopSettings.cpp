#include "platform/toolkit/gnustep/DesktopSettings.h"

#include <X11/Xlib.h>
#include <cstdint>

namespace {

/// Reads on until the bytes are used up; everything is 0 or empty from there on.
class Reader {
public:
    Reader(const unsigned char *bytes, size_t size) : mNext(bytes), mEnd(bytes + size) {}

    [[nodiscard]] bool IsGood() const { return mIsGood; }
    void Skip(size_t count) { (void)Take(count); }
    uint32_t Number(int bytes) {
        const unsigned char *at = Take(static_cast<size_t>(bytes));
        uint32_t number = 0;
        for (int i = 0; at && i < bytes; ++i)
            number = number << 8 | at[mIsLittleEndian ? bytes - 1 - i : i];
        return number;
    }
    /// Padded to whole words.
    std::string Text(size_t length) {
        const unsigned char *at = Take(length);
        Skip((4 - length % 4) % 4);
        return at && mIsGood ? std::string(reinterpret_cast<const char *>(at), length)
                             : std::string();
    }
    void UseByteOrder(uint32_t order) { mIsLittleEndian = order == LSBFirst; }

private:
    const unsigned char *Take(size_t count) {
        mIsGood = mIsGood && count <= static_cast<size_t>(mEnd - mNext);
        if (!mIsGood) return nullptr;
        mNext += count;
        return mNext - count;
    }

    const unsigned char *mNext, *mEnd;
    bool mIsLittleEndian = false, mIsGood = true;
};

enum Kind { kNumber = 0, kText = 1, kColour = 2 };

struct Setting {
    std::string name, text;
};

Setting NextSetting(Reader &reader) {
    const uint32_t kind = reader.Number(1);
    reader.Skip(1);
    Setting setting = {reader.Text(reader.Number(2)), {}};
    reader.Skip(4); // since when
    if (kind == kText) setting.text = reader.Text(reader.Number(4));
    if (kind == kNumber) reader.Skip(4);
    if (kind == kColour) reader.Skip(8);
    return setting;
}

int IgnoreError(Display * /*display*/, XErrorEvent * /*event*/) {
    return 0;
}

/// The window that holds the settings; None without a desktop that tells any.
Window OwnerOfSettings(Display *display) {
    const std::string name = "_XSETTINGS_S" + std::to_string(DefaultScreen(display));
    return XGetSelectionOwner(display, XInternAtom(display, name.c_str(), False));
}

std::string SettingOf(Display *display, Window owner, const std::string &name) {
    constexpr long kMostWords = 1 << 16;
    const Atom settings = XInternAtom(display, "_XSETTINGS_SETTINGS", False);
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long rest = 0;
    unsigned char *data = nullptr;
    XGetWindowProperty(display, owner, settings, 0, kMostWords, False, settings, &type, &format,
                       &count, &rest, &data);
    std::string text;
    if (data && format == 8) text = TextSetting(data, count, name);
    if (data) XFree(data);
    return text;
}

} // namespace

std::string TextSetting(const unsigned char *bytes, size_t size, const std::string &name) {
    Reader reader(bytes, size);
    reader.UseByteOrder(reader.Number(1));
    reader.Skip(3 + 4); // padding; how often they have changed
    for (uint32_t left = reader.Number(4); left > 0 && reader.IsGood(); --left) {
        const Setting setting = NextSetting(reader);
        if (reader.IsGood() && setting.name == name) return setting.text;
    }
    return {};
}

std::string DesktopTextSetting(const std::string &name) {
    // A connection of its own: the error of a desktop that ends just now is nobody else's.
    Display *display = XOpenDisplay(nullptr);
    if (!display) return {};
    const auto handler = XSetErrorHandler(IgnoreError);
    const Window owner = OwnerOfSettings(display);
    std::string text = owner != None ? SettingOf(display, owner, name) : std::string();
    XSync(display, False);
    XSetErrorHandler(handler);
    XCloseDisplay(display);
    return text;
}
