/// libvips started, its objects owned, its errors as one line.
#ifndef ZEL_HOST_IMAGES_VIPSSUPPORT_H
#define ZEL_HOST_IMAGES_VIPSSUPPORT_H

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

#endif
