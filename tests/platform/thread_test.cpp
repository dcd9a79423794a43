// The facade from plain C++ threads, which know nothing of Objective-C or its pools.
#include "tests/platform/CFTest.h"
#include <fstream>
#include <gtest/gtest.h>
#include <platform/Platform.h>
#include <thread>
#include <unistd.h>

namespace {

/// A bit of everything that makes temporary objects.
void Work(int seed) {
    const CFRef text(
        CFStringCreateWithFormat(nullptr, nullptr, CFSTR("%d of %@"), seed, CFSTR("caf\xc3\xa9")));
    EXPECT_EQ(Text(text), std::to_string(seed) + " of caf\xc3\xa9");
    const auto dictionary = Dictionary();
    CFDictionarySetValue(dictionary.Get(), text.Get(), Number(seed).Get());
    CFDictionarySetValue(dictionary.Get(), CFSTR("data"), Data(std::string(1000, 'x')).Get());
    const CFRef data(CFPropertyListCreateData(nullptr, dictionary.Get(),
                                              kCFPropertyListBinaryFormat_v1_0, 0, nullptr));
    const CFRef back(CFPropertyListCreateWithData(nullptr, data.Get(), 0, nullptr, nullptr));
    EXPECT_TRUE(CFEqual(back.Get(), dictionary.Get()));
    const auto url = FileURL("/tmp/a b");
    const CFRef path(CFURLCopyFileSystemPath(url.Get(), kCFURLPOSIXPathStyle));
    EXPECT_EQ(Text(path), "/tmp/a b");
    EXPECT_EQ(CFStringCompare(text.Get(), path.Get(), kCFCompareCaseInsensitive),
              kCFCompareGreaterThan);
    double value = 0;
    EXPECT_TRUE(PlatformScanNumber(PlatformFormatNumber(seed, 2), value));
    EXPECT_EQ(CFPreferencesCopyAppValue(CFSTR("Key"), CFSTR("com.zel.test.none")), nullptr);
}

void OnThreads(int threads, int rounds) {
    std::vector<std::thread> running;
    for (int i = 0; i < threads; ++i)
        running.emplace_back([rounds] {
            for (int k = 0; k < rounds; ++k)
                Work(k);
        });
    for (std::thread &thread : running)
        thread.join();
}

size_t ResidentKilobytes() {
    std::ifstream file("/proc/self/statm");
    size_t total = 0, resident = 0;
    file >> total >> resident;
    return resident * size_t(sysconf(_SC_PAGESIZE)) / 1024;
}

} // namespace

TEST(Threads, ShareTheFacade) {
#if __has_feature(address_sanitizer)
    // Of what two threads make at once on first use, GNUstep forgets one.
    Work(0);
#endif
    OnThreads(4, 100);
}

TEST(Threads, LeaveNothingBehindInALongRun) {
#if defined(__SANITIZE_ADDRESS__) || __has_feature(address_sanitizer) ||                           \
    __has_feature(thread_sanitizer)
    GTEST_SKIP() << "sanitizers keep freed memory";
#endif
    OnThreads(4, 300); // caches fill
    const size_t before = ResidentKilobytes();
    OnThreads(4, 3000);
    // 12000 rounds: a single object left in each would be more than this.
    EXPECT_LT(ResidentKilobytes(), before + 512);
}

TEST(Threads, ThatComeAndGoLeaveNothingBehind) {
#if defined(__SANITIZE_ADDRESS__) || __has_feature(address_sanitizer) ||                           \
    __has_feature(thread_sanitizer)
    GTEST_SKIP() << "sanitizers keep freed memory";
#endif
    for (int i = 0; i < 100; ++i)
        OnThreads(2, 1);
    const size_t before = ResidentKilobytes();
    for (int i = 0; i < 1000; ++i)
        OnThreads(2, 1);
    EXPECT_LT(ResidentKilobytes(), before + 512);
}
