#include <platform/Platform.h>

// The system's allocator keeps freed blocks by itself.
void PlatformKeepFreedMemory() {}
