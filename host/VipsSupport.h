/// libvips started once, its objects owned, its errors as one line.
#ifndef ZEL_HOST_VIPSSUPPORT_H
#define ZEL_HOST_VIPSSUPPORT_H

#include <memory>
#include <string>
#include <vips/vips.h>

struct VipsUnref {
    void operator()(VipsImage *image) const { g_object_unref(image); }
};
using VipsImagePtr = std::unique_ptr<VipsImage, VipsUnref>;

/// Starts libvips. With `withModules` false, readers that come as plug-ins (PDF among them) are
/// left out, which saves half of the start-up time. Only the first call counts. Throws HostError.
void StartVips(bool withModules);

/// What libvips last complained about, as one line; forgets it.
[[nodiscard]] std::string TakeVipsError();

#endif
