/// Is a colour conversion worth its time?
#pragma once

#include <cstddef>

/// Does the ICC profile describe sRGB, or so nearly that no 8-bit sample changes by more than 1?
/// False for profiles of other colour models, and for damaged ones.
[[nodiscard]] bool IsNearlySRGB(const void *profile, size_t size);
