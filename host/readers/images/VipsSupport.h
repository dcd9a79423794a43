/// libvips started, its objects owned, its errors as one line.
#pragma once

#include <memory>
#include <string>
#include <vips/vips.h>

struct VipsUnref {
    void operator()(VipsImage *image) const { g_object_unref(image); }
};
using VipsImagePtr = std::unique_ptr<VipsImage, VipsUnref>;

/// Starts libvips. Throws HostError.
void StartVips();

/// Has libvips put black in the place of pixels that it could not compute? It goes on then, and
/// only warns. Forgets it.
[[nodiscard]] bool TakeLostPixels();

/// What libvips last complained about, as one line; forgets it.
[[nodiscard]] std::string TakeVipsError();
