// The Option key (Alt) held while a record is validated, on a display of the test's own.
#include "tests/Common/Src/BundleHost.h"
#include "tests/Common/Src/TestPPD.h"

#include <gtest/gtest.h>

#include <X11/XKBlib.h>
#include <X11/Xlib.h>

#include <cstdlib>
#include <memory>

namespace {

struct DisplayCloser {
    void operator()(Display *display) const { XCloseDisplay(display); }
};

/// Hears the display's bell.
class BellListener {
public:
    BellListener() : mDisplay(XOpenDisplay(nullptr)) {
        int opcode = 0, error = 0, major = XkbMajorVersion, minor = XkbMinorVersion;
        if (!mDisplay ||
            !XkbQueryExtension(mDisplay.get(), &opcode, &mFirstEvent, &error, &major, &minor))
            return;
        XkbSelectEvents(mDisplay.get(), XkbUseCoreKbd, XkbBellNotifyMask, XkbBellNotifyMask);
        XSync(mDisplay.get(), False);
    }
    bool IsListening() const { return mDisplay != nullptr && mFirstEvent != 0; }
    /// Bells since the last call. A bell that was rung before has arrived after the round trip.
    int Count() {
        XSync(mDisplay.get(), False);
        int bells = 0;
        while (XPending(mDisplay.get()) > 0) {
            XEvent event;
            XNextEvent(mDisplay.get(), &event);
            if (event.type != mFirstEvent) continue;
            if (reinterpret_cast<XkbEvent &>(event).any.xkb_type == XkbBellNotify) ++bells;
        }
        return bells;
    }

private:
    std::unique_ptr<Display, DisplayCloser> mDisplay;
    int mFirstEvent = 0;
};

class HeldKey {
public:
    explicit HeldKey(const std::string &key) : mKey(key) { Run("keydown"); }
    ~HeldKey() { Run("keyup"); }
    HeldKey(const HeldKey &) = delete;
    HeldKey &operator=(const HeldKey &) = delete;

private:
    void Run(const std::string &action) const {
        EXPECT_EQ(std::system(("xdotool " + action + " " + mKey).c_str()), 0);
    }
    std::string mKey;
};

/// Bells arrive through another connection: waits for one; the limit is for hangs.
int BellsSoon(BellListener &bell) {
    for (int i = 0; i < 2400; ++i) {
        if (const int count = bell.Count()) return count;
        struct timespec pause = {0, 50'000'000};
        nanosleep(&pause, nullptr);
    }
    return 0;
}

TEST(OptionKeyTest, HeldWhileValidating_BeepsAndResetsAGoodRecord) {
    setenv("ZEL_TEST_DISPLAY", "1", 1);
    BellListener bell;
    ASSERT_TRUE(bell.IsListening());
    ClearPreferences();
    ScratchFolder folder;
    // A printer that is chosen: no alert waits for somebody to close it.
    SetPreference(CFSTR("PPDBookmark"),
                  MakeBookmark(folder.Write("Test.ppd", TestPPD().Text())).Get());
    Session session;
    RecordHandle record;
    Driver().ZELPrDefaults(session.Get(), record.Get());
    const std::string defaults = record.Bytes();

    record.Record().mFlipH_be = 1;
    EXPECT_FALSE(Driver().ZELPrValidate(session.Get(), record.Get())) << "no key is held";
    EXPECT_EQ(bell.Count(), 0);
    {
        const HeldKey shift("Shift_L");
        EXPECT_FALSE(Driver().ZELPrValidate(session.Get(), record.Get())) << "another key";
    }
    for (const char *key : {"Alt_L", "Alt_R"}) {
        record.Record().mFlipH_be = 1;
        const HeldKey option(key);
        EXPECT_TRUE(Driver().ZELPrValidate(session.Get(), record.Get())) << key;
        EXPECT_EQ(record.Bytes(), defaults);
        EXPECT_EQ(BellsSoon(bell), 1);
    }
    EXPECT_FALSE(Driver().ZELPrValidate(session.Get(), record.Get())) << "released";
}

} // namespace
