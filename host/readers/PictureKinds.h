/// What kind a file of pictures is, by its first bytes.
#pragma once

#include "host/readers/ImageFile.h"
#include <optional>

/// `head`: the first bytes of a file, 1024 if there are as many. Empty for a kind that zelprint
/// does not read.
[[nodiscard]] std::optional<FileKind> PictureKindOf(const std::string &head);

/// Whether files of this kind may hold further pictures, such as those of an animation, which are
/// not pages.
[[nodiscard]] bool MayHoldFrames(FileKind kind);
