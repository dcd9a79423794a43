#import <Foundation/Foundation.h>

#include <cstdio>
#include <gtest/gtest.h>
#include <unistd.h>

int main(int argc, char **argv) {
    @autoreleasepool {
        testing::InitGoogleTest(&argc, argv);
        const int result = RUN_ALL_TESTS();
        // AppKit's objects outlive main, and nothing orders its exit handlers after the tests' own.
        std::fflush(nullptr);
        _exit(result);
    }
}
