/// Encoders between the PostScript writer and the Writebuffer.
///
/// Errors are those latched by the Writebuffer; the first one ends a call and is returned. Used
/// from the thread that fills the Writebuffer.
#pragma once

#include "Common/Src/stream/ASCII85.h"
#include <array>
#include <cstddef>
#include <cstdint>

struct Writebuffer;

/// The common base. Does not own the Writebuffer and must go before it.
class OutputStreamEncoder {
public:
    explicit OutputStreamEncoder(Writebuffer *buffer) : mBuffer(buffer) {}
    virtual ~OutputStreamEncoder() = default;
    OutputStreamEncoder(const OutputStreamEncoder &) = delete;
    OutputStreamEncoder &operator=(const OutputStreamEncoder &) = delete;

    /// Encodes `length` bytes.
    [[nodiscard]] virtual int16_t Write(const void *data, size_t length) = 0;

    /// Ends the data stream; the next Write begins another one.
    [[nodiscard]] virtual int16_t Close();

protected:
    Writebuffer *mBuffer;
};

/// Passes bytes through unchanged.
class BinaryStreamEncoder final : public OutputStreamEncoder {
public:
    using OutputStreamEncoder::OutputStreamEncoder;
    [[nodiscard]] int16_t Write(const void *data, size_t length) override;
};

/// ASCII base-85 in lines of 80 characters, for the ASCII85Decode filter (PostScript Language
/// Reference, 3rd edition, 3.13.3), except for how a stream ends, see Close.
///
/// Input is encoded in blocks of 64 bytes: what does not fill a block waits for more or for Close.
class ASCII85StreamEncoder final : public OutputStreamEncoder {
public:
    /// Encodes with `kernel`, by default with the fastest one this processor runs.
    explicit ASCII85StreamEncoder(Writebuffer *buffer,
                                  ASCII85Kernel kernel = ASCII85FastestKernel());

    [[nodiscard]] int16_t Write(const void *data, size_t length) override;

    /// Encodes what waits, then ends the data with "~>" and a line feed. Left-over 1 to 3 bytes
    /// become as many characters, the digits above the lowest one of their zero-padded group (not
    /// the published rule: a host has to choose its page raster with that in mind). The mark is
    /// cut at the 80th character like any text, and its line feed counts as a character.
    [[nodiscard]] int16_t Close() override;

private:
    [[nodiscard]] int16_t WriteBufferContents();
    [[nodiscard]] int16_t WriteBlocks(const uint8_t *data, size_t blocks);
    [[nodiscard]] int16_t WriteText(const char *text, size_t length);
    [[nodiscard]] int16_t FinishLine(const char *text, size_t missing);
    [[nodiscard]] int16_t WriteLines(const char *text, size_t length);

    ASCII85Kernel mKernel;
    uint64_t mGroupCount = 0;               ///< bytes in mGroupBuffer
    std::array<uint8_t, 64> mGroupBuffer{}; ///< input that does not fill a block yet
    uint64_t mLineCount = 0;                ///< characters in mLineBuffer, 0 to 79 between calls
    std::array<char, 82> mLineBuffer{};     ///< the unfinished line
};
