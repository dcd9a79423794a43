// Work for the main thread, given from other threads. The main thread's loop is Foundation's.
#import <Foundation/Foundation.h>
#include <atomic>
#include <dispatch/dispatch.h>
#include <gtest/gtest.h>
#include <thread>

namespace {

struct Call {
    std::thread::id main = std::this_thread::get_id();
    std::atomic<int> done{0};
    std::atomic<bool> wrongThread{false};
    std::atomic<bool> finished{false};
};

void Work(void *context) {
    Call &call = *static_cast<Call *>(context);
    if (std::this_thread::get_id() != call.main) call.wrongThread = true;
    ++call.done;
}

/// Runs the main loop in a mode until the call has finished; false when it hangs.
bool RunLoopUntilFinished(const Call &call, NSString *mode) {
    @autoreleasepool {
        // A loop without any source would return at once.
        NSTimer *timer = [NSTimer timerWithTimeInterval:0.05
                                                 target:[NSObject class]
                                               selector:@selector(description)
                                               userInfo:nil
                                                repeats:YES];
        [[NSRunLoop currentRunLoop] addTimer:timer forMode:mode];
        NSDate *end = [NSDate dateWithTimeIntervalSinceNow:120];
        while (!call.finished && [end timeIntervalSinceNow] > 0)
            [[NSRunLoop currentRunLoop] runMode:mode
                                     beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.05]];
        [timer invalidate];
        return call.finished;
    }
}

} // namespace

TEST(MainQueue, SynchronousWorkRunsOnTheMainThreadBeforeTheCallReturns) {
    for (NSString *mode :
         {NSDefaultRunLoopMode, @"NSModalPanelRunLoopMode", @"NSEventTrackingRunLoopMode"}) {
        Call call;
        std::thread thread([&call] {
            for (int i = 1; i <= 10; ++i) {
                dispatch_sync_f(dispatch_get_main_queue(), &call, Work);
                EXPECT_EQ(call.done, i);
            }
            call.finished = true;
        });
        EXPECT_TRUE(RunLoopUntilFinished(call, mode)) << [mode UTF8String];
        thread.join();
        EXPECT_EQ(call.done, 10);
        EXPECT_FALSE(call.wrongThread);
    }
}

TEST(MainQueue, SeveralThreadsTakeTurns) {
    Call call;
    std::atomic<int> running{8};
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&] {
            for (int k = 0; k < 25; ++k)
                dispatch_sync_f(dispatch_get_main_queue(), &call, Work);
            if (--running == 0) call.finished = true;
        });
    EXPECT_TRUE(RunLoopUntilFinished(call, NSDefaultRunLoopMode));
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(call.done, 200);
    EXPECT_FALSE(call.wrongThread);
}

TEST(MainQueue, WorkGivenOnTheMainThreadRunsAtOnce) {
    Call call;
    dispatch_sync_f(dispatch_get_main_queue(), &call, Work);
    EXPECT_EQ(call.done, 1);
}
