#include <cstdlib>
#include <gtest/gtest.h>
#include <unistd.h>

int main(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    // AppKit's objects outlive main, and nothing orders its exit handlers after those of the tests.
    std::fflush(nullptr);
    _exit(result);
}
