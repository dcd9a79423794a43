/// The kernels for x86-64, and the arithmetic they share. To be called only where the processor
/// has the instructions.
///
/// A group v is split by divisions without a divide instruction:
///   q = v / 7225        = (v * 2434904643) >> 44, exact for every 32-bit v
///   d0 = q / 7225       through float: q < 2^20 is exact in one, and the reciprocal is rounded up
///   v mod 7225 and q mod 7225 fit 16 bits, so one 16-bit multiplication makes both
///   x / 85              = (x * 49345) >> 22, exact for x < 7225
/// (D. Lemire, O. Kaser, N. Kurz, "Faster remainder by direct computation", 2019, gives the
/// condition for such factors; the tests go through every value that can occur.)
#pragma once

#include "Common/Src/stream/ASCII85.h"

size_t ASCII85EncodeSSE41(const uint8_t *data, size_t blocks, char *text);
size_t ASCII85EncodeAVX2(const uint8_t *data, size_t blocks, char *text);
size_t ASCII85EncodeAVX512(const uint8_t *data, size_t blocks, char *text);

constexpr uint32_t kReciprocal7225 = 2434904643U;
constexpr float kFloatReciprocal7225 = 1.3840831e-4F;
constexpr short kReciprocal85 = static_cast<short>(49345);
/// In place of the first digit of a zero group: the character "z" less 33.
constexpr int kZeroGroupDigit = 'z' - '!';

/// Sixteen groups of five characters in `digits`, of which those whose bit in `zeroGroups` is set
/// start with "z": moves the characters together. Always stores 8 bytes a group, so `digits` has 3
/// bytes more and `text` the kernel's slack. Returns the end of the text.
inline char *ASCII85Squeeze(const char *digits, uint32_t zeroGroups, char *text) {
    for (int group = 0; group < 16; ++group) {
        __builtin_memcpy(text, digits + 5 * group, 8);
        text += 5 - 4 * ((zeroGroups >> group) & 1U);
    }
    return text;
}
