/// Keeps descriptors that are left open on purpose, a few at most.
#pragma once

#include "support/RegularFile.h"
#include <array>
#include <cstddef>
#include <mutex>

/// Owns what the signature check leaves open: the newest kCapacity descriptors. One more closes the
/// oldest, so that a process that checks for ever runs out of nothing. Any thread.
class DescriptorKeeper {
public:
    static constexpr size_t kCapacity = 8;

    void Keep(FileDescriptor file);

private:
    std::mutex mMutex;
    std::array<FileDescriptor, kCapacity> mFiles;
    size_t mOldest = 0;
};
