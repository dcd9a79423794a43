/// What libvips does not tell of a JPEG file: whether the picture is all there.
#pragma once

#include "host/readers/ImageFile.h"
#include <atomic>

/// Decodes the whole file, without making a picture of it, and tells what the decoder had to invent
/// or leave out. libvips hears nothing of the last rows and of what follows them. Ends soon, and
/// tells nothing, when `stopped` becomes true.
[[nodiscard]] Damage CheckJPEG(const std::string &path, const std::atomic<bool> &stopped);
