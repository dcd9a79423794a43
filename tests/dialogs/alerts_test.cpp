// Without a window system: what a server's log shows.
#include "support/Alerts.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <thread>

namespace {

class AlertsWithoutDisplay : public testing::Test {
protected:
    static void SetUpTestSuite() { unsetenv("DISPLAY"); }

    template <typename Call>
    std::string StandardError(Call call) {
        testing::internal::CaptureStderr();
        call();
        return testing::internal::GetCapturedStderr();
    }
};

TEST_F(AlertsWithoutDisplay, MessageAlert_MessageOnly_IsOneLine) {
    EXPECT_EQ(StandardError([] { MessageAlert(CFSTR("No room"), nullptr); }), "No room\n");
}

TEST_F(AlertsWithoutDisplay, MessageAlert_WithInformativeText_IsOneLineOfBoth) {
    EXPECT_EQ(StandardError([] { MessageAlert(CFSTR("No room."), CFSTR("Make some.")); }),
              "No room. Make some.\n");
}

TEST_F(AlertsWithoutDisplay, MessageAlert_EmptyInformativeText_AddsNothing) {
    EXPECT_EQ(StandardError([] { MessageAlert(CFSTR("No room"), CFSTR("")); }), "No room\n");
}

TEST_F(AlertsWithoutDisplay, DisplayError_CarriageReturnInText_StaysOneLine) {
    EXPECT_EQ(StandardError([] { DisplayError("Bad file\rUsing defaults\nnow"); }),
              "Bad file Using defaults now\n");
}

TEST_F(AlertsWithoutDisplay, DisplayError_Utf8_IsWrittenAsItIs) {
    EXPECT_EQ(StandardError([] { DisplayError("Größe 50% %s"); }), "Größe 50% %s\n");
}

TEST_F(AlertsWithoutDisplay, DisplayError_NotUtf8_SaysAnErrorOccurred) {
    EXPECT_EQ(StandardError([] { DisplayError("bad \xff\xfe"); }), "An Error Occurred\n");
}

TEST_F(AlertsWithoutDisplay, DisplayError_Null_SaysAnErrorOccurred) {
    EXPECT_EQ(StandardError([] { DisplayError(nullptr); }), "An Error Occurred\n");
}

TEST_F(AlertsWithoutDisplay, DisplayError_FromWorkerWhileMainRunsNoLoop_ReturnsAtOnce) {
    EXPECT_EQ(StandardError([] {
                  std::thread worker([] { DisplayError("from a worker"); });
                  worker.join();
              }),
              "from a worker\n");
}

TEST_F(AlertsWithoutDisplay, DisplayError_FromManyWorkers_KeepsEveryLineWhole) {
    const std::string text = StandardError([] {
        std::thread workers[8];
        for (std::thread &t : workers)
            t = std::thread([] { DisplayError("eight of these"); });
        for (std::thread &t : workers)
            t.join();
    });
    std::string expected;
    for (int i = 0; i < 8; ++i)
        expected += "eight of these\n";
    EXPECT_EQ(text, expected);
}

} // namespace
