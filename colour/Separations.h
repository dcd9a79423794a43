/// The choices of how RGB becomes CMYK: "Standard" black generation, or a profile of the user's.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <cstdint>

/// The list of choices. `names` holds the profile file names, sorted; "Standard" is not in it.
struct Separations {
    int64_t count; ///< number of choices, "Standard" included
    CFMutableArrayRef names;
};

/// One document's chosen separation; opaque outside Separations.cpp.
struct CMYKSeparation;

/// A new list, or null when the profiles folder's location cannot be told. A folder that does not
/// exist gives the one choice "Standard".
Separations *ScanSeparationsFolder();
void DeleteSeparationsList(Separations *list);

int32_t CountCMYKSeparation(const Separations *list);

/// The name of a choice; "Standard" for index 0 and for every index out of range. Not retained.
CFStringRef GetCMYKSeparationName(const Separations *list, int32_t index);

/// Can this name be used? Empty and "Standard" always; else the file of that name directly in the
/// profiles folder must carry the profile signature. `list` is not consulted.
bool ValidateCMYKSeparation(const Separations *list, CFStringRef name);

/// Builds the separation of that name (null or empty: "Standard"). 0; -108 when memory is short;
/// -43 when the profile cannot be loaded, with a record stored that the caller still has to
/// release. `ignored` is a list of choices that is not consulted.
int16_t GetCMYKSeparation(const Separations *ignored, CFStringRef name,
                          CMYKSeparation **separation);

/// Converts `count` pixels x, R, G, B to C, M, Y, K at dst[0], dst[planeStride],
/// dst[2*planeStride], dst[3*planeStride], advancing dst by pixelStride a pixel.
void PerformCMYKSeparation(const CMYKSeparation *separation, const uint8_t *src, int64_t count,
                           uint8_t *dst, int64_t planeStride, int64_t pixelStride);

void ReleaseCMYKSeparation(CMYKSeparation *separation);
