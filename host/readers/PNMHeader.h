/// The header of a PNM file: netpbm's PBM, PGM and PPM (P1 to P6), and PFM (Pf, PF).
#pragma once

#include "host/readers/ByteReader.h"

struct PNMHeader {
    char kind = '1'; ///< the second letter of the magic number
    int64_t width = 0, height = 0;
    int most = 1; ///< the largest sample of P2, P3, P5 and P6; 1 of the others

    /// Whether the samples are text.
    [[nodiscard]] bool IsPlain() const { return kind <= '3'; }
    /// Whether the samples are single bits.
    [[nodiscard]] bool IsBits() const { return kind == '1' || kind == '4'; }
    /// Number of samples.
    [[nodiscard]] int64_t Samples() const;
    /// Bytes of the samples of a file that is not plain.
    [[nodiscard]] int64_t SampleBytes() const;
};

/// Passes white space and comments; false when there were none.
bool PassPNMSpace(ByteReader &file);

/// Reads a header; the samples follow. Throws std::runtime_error that says what is wrong with it.
[[nodiscard]] PNMHeader ReadPNMHeader(ByteReader &file);

/// A number of plain samples from 0 to `most`, with the space before it. Throws as above.
[[nodiscard]] int ReadPNMNumber(ByteReader &file, int most);

/// The next bit of plain samples, which need no space between them: true is black. Throws as above.
[[nodiscard]] bool ReadPNMBit(ByteReader &file);
