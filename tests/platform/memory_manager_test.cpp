// Relocatable blocks: sizes, growth, errors.
#include <CoreServices/CoreServices.h>
#include <cstring>
#include <gtest/gtest.h>

TEST(MemoryManager, NewBlockHasTheSizeAskedFor) {
    for (Size size : {0L, 1L, 416L, 100000L}) {
        Handle h = NewHandle(size);
        ASSERT_NE(h, nullptr);
        EXPECT_EQ(GetHandleSize(h), size);
        EXPECT_EQ(MemError(), noErr);
        DisposeHandle(h);
    }
}

TEST(MemoryManager, ResizingKeepsTheContents) {
    Handle h = NewHandle(4);
    std::memcpy(*h, "POST", 4);
    SetHandleSize(h, 1 << 20);
    EXPECT_EQ(GetHandleSize(h), 1 << 20);
    EXPECT_EQ(std::memcmp(*h, "POST", 4), 0);
    SetHandleSize(h, 2);
    EXPECT_EQ(GetHandleSize(h), 2);
    EXPECT_EQ(std::memcmp(*h, "PO", 2), 0);
    DisposeHandle(h);
}

TEST(MemoryManager, ImpossibleSizesAreReportedAndLeaveTheBlockAlone) {
    Handle h = NewHandle(4);
    SetHandleSize(h, -1);
    EXPECT_EQ(MemError(), memFullErr);
    EXPECT_EQ(GetHandleSize(h), 4);
    DisposeHandle(h);
    EXPECT_EQ(NewHandle(-1), nullptr);
    EXPECT_EQ(MemError(), memFullErr);
}

TEST(MemoryManager, NilHandleIsReported) {
    EXPECT_EQ(GetHandleSize(nullptr), 0);
    EXPECT_EQ(MemError(), nilHandleErr);
    SetHandleSize(nullptr, 10);
    EXPECT_EQ(MemError(), nilHandleErr);
    DisposeHandle(nullptr);
    EXPECT_EQ(MemError(), nilHandleErr);
}
