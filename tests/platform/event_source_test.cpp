// Modifier keys. Under a display the keys are pressed by xdotool, as a person would.
#include <ApplicationServices/ApplicationServices.h>
#include <cstdlib>
#include <gtest/gtest.h>
#include <platform/Platform.h>
#include <string>
#include <vector>

namespace {

bool HasDisplay() {
    return std::getenv("DISPLAY") != nullptr;
}

/// Holds a key down as long as it lives.
class HeldKey {
public:
    explicit HeldKey(std::string name) : mName(std::move(name)) { Send("keydown"); }
    ~HeldKey() { Send("keyup"); }
    HeldKey(const HeldKey &) = delete;
    HeldKey &operator=(const HeldKey &) = delete;

private:
    void Send(const std::string &command) const {
        const int status = std::system(("xdotool " + command + " " + mName).c_str());
        EXPECT_EQ(status, 0) << command << " " << mName;
    }
    std::string mName;
};

CGEventFlags Flags() {
    return CGEventSourceFlagsState(kCGEventSourceStateCombinedSessionState);
}

} // namespace

TEST(EventSource, WithoutADisplayNoKeyIsHeld) {
    if (HasDisplay()) GTEST_SKIP() << "there is a display";
    EXPECT_EQ(CGEventSourceCreate(kCGEventSourceStateHIDSystemState), nullptr);
    EXPECT_EQ(Flags(), 0u);
}

TEST(EventSource, HasTheStateItWasMadeWith) {
    if (!HasDisplay()) GTEST_SKIP() << "no display";
    CGEventSourceRef source = CGEventSourceCreate(kCGEventSourceStateHIDSystemState);
    ASSERT_NE(source, nullptr);
    EXPECT_EQ(CGEventSourceGetSourceStateID(source), kCGEventSourceStateHIDSystemState);
    CFRelease(source);
    EXPECT_EQ(CGEventSourceGetSourceStateID(nullptr), kCGEventSourceStatePrivate);
}

TEST(EventSource, HeldKeysAreToldUntilTheyAreReleased) {
    if (!HasDisplay()) GTEST_SKIP() << "no display";
    const std::vector<std::pair<const char *, CGEventFlags>> keys = {
        {"Alt_L", kCGEventFlagMaskAlternate},
        {"Alt_R", kCGEventFlagMaskAlternate},
        {"Shift_L", kCGEventFlagMaskShift},
        {"Shift_R", kCGEventFlagMaskShift},
        {"Control_L", kCGEventFlagMaskControl}};
    for (const auto &[name, flag] : keys) {
        EXPECT_EQ(Flags(), 0u) << name;
        const HeldKey key(name);
        EXPECT_EQ(Flags(), flag) << name;
    }
    EXPECT_EQ(Flags(), 0u);
}

TEST(EventSource, OtherKeysDoNotCount) {
    if (!HasDisplay()) GTEST_SKIP() << "no display";
    const HeldKey key("a");
    EXPECT_EQ(Flags(), 0u);
}

TEST(EventSource, KeysHeldTogetherAreAllTold) {
    if (!HasDisplay()) GTEST_SKIP() << "no display";
    const HeldKey option("Alt_L");
    const HeldKey shift("Shift_L");
    EXPECT_EQ(Flags(), CGEventFlags(kCGEventFlagMaskAlternate) | kCGEventFlagMaskShift);
}

TEST(EventSource, WithoutWindowsItIsAsWithoutADisplay) {
    const bool has = PlatformHasWindowServer();
    EXPECT_EQ(has, HasDisplay());
    PlatformUseWindows(false);
    EXPECT_FALSE(PlatformHasWindowServer());
    EXPECT_EQ(CGEventSourceCreate(kCGEventSourceStateHIDSystemState), nullptr);
    EXPECT_EQ(Flags(), 0u);
    PlatformUseWindows(true);
    EXPECT_EQ(PlatformHasWindowServer(), has);
}
