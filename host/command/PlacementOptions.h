/// What the command line says of size and place, in zelprint's words and in those of lp.
#pragma once

#include "host/placement/PagePlacement.h"
#include <string>

/// Reads "fit", "shrink", "none", "fill" or a percentage ("71", "141.4%"). What is wrong with other
/// text; empty when nothing is.
[[nodiscard]] std::string ReadScale(const std::string &text, PlacementWishes &wishes);

/// Reads "centre", "top", "bottom-left" and so on.
[[nodiscard]] std::string ReadPosition(const std::string &text, PlacementWishes &wishes);

/// Takes an option as lp has it with -o: fit-to-page, print-scaling, natural-scaling or position.
/// False for every other. Throws HostError (Usage) for a value that makes no sense.
[[nodiscard]] bool TakePlacementOption(const std::string &name, const std::string &value,
                                       PlacementWishes &wishes);
