#include "colour/DescriptorKeeper.h"

void DescriptorKeeper::Keep(FileDescriptor file) {
    const std::lock_guard lock(mMutex);
    std::swap(mFiles[mOldest], file); // `file` takes the oldest along and closes it
    mOldest = (mOldest + 1) % kCapacity;
}
