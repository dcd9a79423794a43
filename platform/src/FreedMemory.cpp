#include <malloc.h>
#include <platform/Platform.h>

namespace {

constexpr int kLargestBlock = 32 << 20; // the C library takes no more
constexpr int kKept = 256 << 20;
constexpr int kGrowth = 4 << 20;

} // namespace

void PlatformKeepFreedMemory() {
    // One arena: the others give their memory back whatever they are told.
    (void)mallopt(M_ARENA_MAX, 1);
    (void)mallopt(M_MMAP_THRESHOLD, kLargestBlock);
    (void)mallopt(M_TRIM_THRESHOLD, kKept);
    (void)mallopt(M_TOP_PAD, kGrowth);
}
