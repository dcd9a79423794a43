// The dialog entry points on a server: the loaded bundle, no window system.
#include "tests/Common/Src/BundleHost.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace {

using DialogFunction = Boolean (*)(DriverContext *, Handle);

DialogFunction Find(CFStringRef name) {
    return reinterpret_cast<DialogFunction>(
        CFBundleGetFunctionPointerForName(LoadedBundle(), name));
}

struct DialogCase {
    const char *name, *message;
};

class WithoutWindowSystem : public testing::TestWithParam<DialogCase> {
protected:
    WithoutWindowSystem() {
        unsetenv("DISPLAY");
        ClearPreferences();
    }
    DialogFunction Dialog() const { return Find(MakeString(GetParam().name).Get()); }

    RecordHandle mRecord;
    Session mSession;
};

TEST_P(WithoutWindowSystem, Dialog_SaysSoInOneLineAndCancels) {
    ASSERT_NE(Dialog(), nullptr);
    Driver().ZELPrDefaults(mSession.Get(), mRecord.Get());
    const std::string before = mRecord.Bytes();
    std::string messages;
    {
        const StderrCapture capture;
        EXPECT_FALSE(Dialog()(mSession.Get(), mRecord.Get()));
        messages = capture.Text();
    }
    EXPECT_EQ(messages, GetParam().message);
    EXPECT_EQ(mRecord.Bytes(), before);
    EXPECT_EQ(Driver().ZELPrOpenDoc(mSession.Get()), 0); // does nothing
    EXPECT_EQ(mSession.Close(), 0);
}

TEST_P(WithoutWindowSystem, Dialog_AfterAFailure_DoesNothing) {
    Driver().ZELPrSetError(mSession.Get(), -108);
    std::string messages;
    {
        const StderrCapture capture;
        EXPECT_FALSE(Dialog()(mSession.Get(), mRecord.Get()));
        messages = capture.Text();
    }
    EXPECT_EQ(messages, "");
    EXPECT_EQ(mSession.Close(), -108);
}

INSTANTIATE_TEST_SUITE_P(
    Dialogs, WithoutWindowSystem,
    testing::Values(
        DialogCase{"ZELPrStyle",
                   "The page-setup dialog cannot be shown: there is no window system.\n"},
        DialogCase{"ZELPrJob", "The print dialog cannot be shown: there is no window system.\n"}));

} // namespace
