/// What decoders of TIFF files complain about without giving up.
#pragma once

#include "host/readers/ImageFile.h"

/// Makes libvips keep what decoders of TIFF files complain about; to be called when it has started.
void HearTIFFDecoders();

/// What the decoders have complained about since libvips' errors were cleared, though all went on.
[[nodiscard]] Damage TakeTIFFDamage();
