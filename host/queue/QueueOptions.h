/// Names in the queue's PPD file that its maker and the backend agree on.
///
/// Not "ColorModel" and the like: queues of other machines send their own options of such names
/// with every job, and every CMYK document would become RGB.
#pragma once

namespace queue_option {

inline constexpr char kColourSpace[] = "zelColorSpace"; ///< CMYK, RGB or Gray
inline constexpr char kFormat[] = "zelFormat";          ///< PS or EPS
inline constexpr char kSeparation[] = "zelSeparation";  ///< a key; see kSeparationName
inline constexpr char kScaling[] = "zelScaling";        ///< a word of --scale, or auto
inline constexpr char kRotation[] = "zelRotation";      ///< None or Turned
/// An attribute for each separation: its name, which may hold what a key may not.
inline constexpr char kSeparationName[] = "zelSeparationName";

} // namespace queue_option
