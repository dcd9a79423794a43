/// The page image that the host wants to print.
#pragma once

#include <cstdint>

struct PageInfo_tag {
    int32_t widthPixels = 0, heightPixels = 0;
    double widthMM = 0, heightMM = 0; ///< size on paper in millimetres
    uint16_t depth = 32;              ///< bits a pixel of the host's bitmaps
};
