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

/// What libvips last complained about, as one line; forgets it.
[[nodiscard]] std::string TakeVipsError();
