/// What a process has of the system's, and whether that grows with its work.
#pragma once

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <string>

struct Usage {
    size_t heap = 0;        ///< bytes that are allocated
    size_t resident = 0;    ///< bytes of memory
    size_t descriptors = 0; ///< open ones
    size_t threads = 0;

    static Usage Now() {
        const struct mallinfo2 blocks = mallinfo2();
        (void)malloc_trim(0);
        return {blocks.uordblks + blocks.hblkhd, 1024 * Status("VmRSS:"), Entries("/proc/self/fd"),
                Status("Threads:")};
    }
    void Show(const char *when) const {
        (void)printf("%-6s %10.1f KB allocated %8.1f MB resident %4zu descriptors %3zu threads\n",
                     when, static_cast<double>(heap) / 1024,
                     static_cast<double>(resident) / 1048576, descriptors, threads);
        (void)fflush(stdout);
    }

private:
    static size_t Entries(const char *folder) {
        size_t count = 0;
        for ([[maybe_unused]] const auto &entry : std::filesystem::directory_iterator(folder))
            ++count;
        return count;
    }
    static size_t Status(const std::string &name) {
        std::ifstream file("/proc/self/status");
        for (std::string word; file >> word;)
            if (word == name && file >> word) return std::stoul(word);
        return 0;
    }
};
