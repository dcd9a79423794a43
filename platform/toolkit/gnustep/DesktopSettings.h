/// What the desktop tells its programs (XSETTINGS), as GTK's programs ask for it.
#pragma once

#include <cstddef>
#include <string>

/// A setting that is a text, from the bytes of the protocol's property; empty when there is none of
/// that name or the bytes are no settings.
[[nodiscard]] std::string TextSetting(const unsigned char *bytes, size_t size,
                                      const std::string &name);

/// The desktop's own; empty also without a desktop that tells any.
[[nodiscard]] std::string DesktopTextSetting(const std::string &name);
