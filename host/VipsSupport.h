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

/// Begins to start libvips in a thread of its own. With `withModules` false, readers that come as
/// plug-ins (PDF among them) are left out, which saves half of the start-up time. Only the first
/// call counts.
void StartVips(bool withModules);

/// Waits until libvips is there; starts it if nobody has. Throws HostError when it cannot start.
void NeedVips();

/// What libvips last complained about, as one line; forgets it.
[[nodiscard]] std::string TakeVipsError();

#endif
