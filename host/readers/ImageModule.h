/// The image module: libvips and what zelprint does with it, in a library that is loaded when a
/// file needs it. libvips brings a hundred other libraries; to load them takes as long as to print
/// half a page.
#pragma once

#include "host/readers/ImageFile.h"

/// Begins to load and start the module in a thread of its own. With `withPlugIns` false, readers
/// that come as plug-ins of libvips (PDF among them) are left out, which saves half of its start-up
/// time. Only the first call counts.
void StartImageModule(bool withPlugIns);

/// Opens a file with the module, started by now or not; people call it `name`. `tolerant` goes on
/// where it is cut off, if that is possible. Throws HostError when the module cannot be loaded, or
/// not read the file.
[[nodiscard]] std::unique_ptr<ImageFile> OpenWithModule(const std::string &path, FileKind kind,
                                                        const std::string &name, bool tolerant);

/// What the module exports.
extern "C" {
/// Starts libvips. Throws HostError.
using ImageModuleStart = void();
/// A new file; the caller owns it.
using ImageModuleOpen = ImageFile *(const std::string &path, FileKind kind, const std::string &name,
                                    bool tolerant);
}
