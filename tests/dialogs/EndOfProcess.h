/// Ends processes that show windows: AppKit's objects outlive main, and nothing orders its exit
/// handlers after the tests' own.
#pragma once

#include <cstdio>
#include <unistd.h>

/// There only when coverage is counted: leaves the counts, as a normal end would.
extern "C" int __llvm_profile_write_file(void) __attribute__((weak));

[[noreturn]] inline void EndProcess(int status) {
    (void)std::fflush(nullptr);
    if (__llvm_profile_write_file) (void)__llvm_profile_write_file();
    _exit(status);
}
