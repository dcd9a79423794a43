/// A file, byte by byte, through a buffer.
#pragma once

#include <cstdint>
#include <string>
#include <sys/types.h>
#include <vector>

class ByteReader {
public:
    /// A file that cannot be opened looks empty.
    explicit ByteReader(const std::string &path);
    ~ByteReader();
    ByteReader(const ByteReader &) = delete;
    ByteReader &operator=(const ByteReader &) = delete;

    /// What Next and Peek return at the end of the file, and where it cannot be read.
    static constexpr int kEnd = -1;
    int Next() { return mAt < mEnd || Fill() ? mBuffer[mAt++] : kEnd; }
    [[nodiscard]] int Peek() { return mAt < mEnd || Fill() ? mBuffer[mAt] : kEnd; }

    /// The next bytes, `count` at most. 0 at the end; -1, and `errno` is set, where they cannot be
    /// read.
    [[nodiscard]] ssize_t Read(uint8_t *bytes, size_t count);

    /// Bytes before the next one.
    [[nodiscard]] int64_t Position() const { return mPast + static_cast<int64_t>(mAt); }
    /// Bytes of the whole file.
    [[nodiscard]] int64_t Size() const;
    /// Goes on at a position; false when the file cannot.
    [[nodiscard]] bool Seek(int64_t position);

private:
    bool Fill();

    int mDescriptor;
    std::vector<uint8_t> mBuffer;
    size_t mAt = 0, mEnd = 0;
    int64_t mPast = 0; ///< bytes before the buffer
};
