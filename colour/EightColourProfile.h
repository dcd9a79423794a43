/// The file format of separation profiles: an ICC lut16Type tag ("mft2") from RGB to eight inks.
#pragma once

#include <cstdint>
#include <cstdio>
#include <vector>

/// A profile as it stands in the file, numbers in host order. Curves have one more entry that
/// repeats the last, and the grid one more layer an axis: the lookups read them with weight zero.
struct EightColourProfile {
    uint32_t gridPoints = 0;    ///< points an axis
    uint32_t inputEntries = 0;  ///< entries of an input curve
    uint32_t outputEntries = 0; ///< entries of an output curve
    std::vector<uint16_t> input[3];
    std::vector<uint16_t> grid;
    std::vector<uint16_t> output[8];
};

/// Reads a profile. False when it is short, has a wrong signature or channel count, no grid points
/// or no curve entries, or cannot be read. Throws std::bad_alloc.
[[nodiscard]] bool ReadEightColourProfile(FILE *stream, EightColourProfile &profile);

/// Samples the transform at 5x5x5 colours: the first four inks as bytes, 500 in all.
void SampleEightColourProfile(const EightColourProfile &profile, uint8_t *grid);
