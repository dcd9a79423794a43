/// The ASCII base-85 stream encoder in its plainest form, byte by byte and line by line: what the
/// real one is compared with and measured against. Written for reading, not for speed.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

/// `Sink` is called with (bytes, length) and returns a 16-bit error.
template <typename Sink>
class LiteralASCII85 {
public:
    explicit LiteralASCII85(Sink sink) : mSink(sink) {}

    int16_t Write(const void *data, size_t length) {
        if (length == 0) return 0;
        const auto *bytes = static_cast<const uint8_t *>(data);
        int16_t error = 0;
        do {
            const size_t count = std::min(64 - mGroupCount, length);
            std::memcpy(mGroupBuffer + mGroupCount, bytes, count);
            mGroupCount += count;
            bytes += count;
            length -= count;
            if (mGroupCount == 64) error = WriteBufferContents();
        } while (length > 0 && error == 0);
        return error;
    }

    int16_t Close() {
        if (mGroupCount != 0) {
            const int16_t error = WriteBufferContents();
            if (error != 0) return error;
        }
        int16_t error = WriteText("~>\n", 3);
        if (error == 0 && mLineCount != 0) {
            error = mSink(mLineBuffer, mLineCount);
            mLineCount = 0;
        }
        return error;
    }

private:
    int16_t WriteBufferContents() {
        int16_t error = 0;
        size_t i = 0;
        for (; i + 4 <= mGroupCount; i += 4) {
            uint32_t value = Value(i, 4);
            char text[5];
            for (int digit = 4; digit >= 0; --digit) {
                text[digit] = static_cast<char>(value % 85 + 33);
                value /= 85;
            }
            error = Value(i, 4) == 0 ? WriteText("z", 1) : WriteText(text, 5);
            if (error != 0) {
                mGroupCount = 0;
                return error;
            }
        }
        const size_t rest = mGroupCount - i;
        if (rest > 0) {
            uint32_t value = Value(i, rest);
            char digits[4];
            for (size_t digit = 0; digit <= rest; ++digit) {
                digits[digit] = static_cast<char>(value % 85 + 33);
                value /= 85;
            }
            char text[3];
            for (size_t k = 0; k < rest; ++k)
                text[k] = digits[rest - k];
            error = WriteText(text, rest);
        }
        mGroupCount = 0;
        return error;
    }

    uint32_t Value(size_t at, size_t count) const {
        uint32_t value = 0;
        for (size_t k = 0; k < 4; ++k) {
            value = value << 8 | (k < count ? mGroupBuffer[at + k] : uint8_t{0});
        }
        return value;
    }

    int16_t WriteText(const char *text, size_t length) {
        while (length > 0) {
            const size_t count = std::min(80 - mLineCount, length);
            std::memcpy(mLineBuffer + mLineCount, text, count);
            mLineCount += count;
            text += count;
            length -= count;
            if (mLineCount == 80) {
                mLineBuffer[80] = '\n';
                const int16_t error = mSink(mLineBuffer, 81);
                mLineCount = 0;
                if (error != 0) return error;
            }
        }
        return 0;
    }

    Sink mSink;
    size_t mGroupCount = 0;
    uint8_t mGroupBuffer[64] = {};
    size_t mLineCount = 0;
    char mLineBuffer[82] = {};
};
