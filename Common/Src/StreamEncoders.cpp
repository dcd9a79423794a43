#include "Common/Src/StreamEncoders.h"
#include "Common/Src/Writebuffer.h"
#include <algorithm>
#include <cstring>

namespace {

constexpr size_t kLineText = 80;
constexpr size_t kLineBytes = kLineText + 1;

/// Blocks encoded at a time: their text and lines stay in the processor's nearest cache.
constexpr size_t kBatchBlocks = 64;
constexpr size_t kBatchText = kBatchBlocks * kASCII85BlockText;
constexpr size_t kBatchLines = kBatchText / kLineText + 1; // one more begun by an earlier batch

int16_t WriteBytes(Writebuffer *buffer, const void *bytes, size_t length) {
    uint64_t count = length;
    return WBWrite(buffer, &count, bytes);
}

} // namespace

int16_t OutputStreamEncoder::Close() {
    return 0;
}

int16_t BinaryStreamEncoder::Write(const void *data, size_t length) {
    return WriteBytes(mBuffer, data, length);
}

ASCII85StreamEncoder::ASCII85StreamEncoder(Writebuffer *buffer, ASCII85Kernel kernel)
    : OutputStreamEncoder(buffer), mKernel(kernel) {}

int16_t ASCII85StreamEncoder::Write(const void *data, size_t length) {
    if (length == 0) return 0;
    const auto *bytes = static_cast<const uint8_t *>(data);
    if (mGroupCount != 0) {
        const size_t count = std::min(mGroupBuffer.size() - mGroupCount, length);
        std::memcpy(mGroupBuffer.data() + mGroupCount, bytes, count);
        mGroupCount += count;
        bytes += count;
        length -= count;
        if (mGroupCount < mGroupBuffer.size()) return 0;
        const int16_t error = WriteBufferContents();
        if (error != 0) return error;
    }
    const size_t blocks = length / kASCII85BlockBytes;
    const int16_t error = WriteBlocks(bytes, blocks);
    if (error != 0) return error;
    mGroupCount = length % kASCII85BlockBytes;
    if (mGroupCount != 0) {
        std::memcpy(mGroupBuffer.data(), bytes + blocks * kASCII85BlockBytes, mGroupCount);
    }
    return 0;
}

/// Whole blocks, straight from the caller's memory.
int16_t ASCII85StreamEncoder::WriteBlocks(const uint8_t *data, size_t blocks) {
    char text[kBatchText + kASCII85Slack];
    while (blocks > 0) {
        const size_t batch = std::min(blocks, kBatchBlocks);
        const size_t length = mKernel(data, batch, text);
        const int16_t error = WriteText(text, length);
        if (error != 0) return error;
        data += batch * kASCII85BlockBytes;
        blocks -= batch;
    }
    return 0;
}

int16_t ASCII85StreamEncoder::WriteBufferContents() {
    const size_t count = mGroupCount;
    mGroupCount = 0;
    if (count == mGroupBuffer.size()) return WriteBlocks(mGroupBuffer.data(), 1);
    char text[kASCII85BlockText];
    size_t length = 0;
    for (size_t i = 0; i + 4 <= count; i += 4) {
        length += ASCII85EncodeGroup(mGroupBuffer.data() + i, text + length);
    }
    length +=
        ASCII85EncodeFinalGroup(mGroupBuffer.data() + count / 4 * 4, count % 4, text + length);
    return WriteText(text, length);
}

/// Forms lines and hands over the finished ones together.
int16_t ASCII85StreamEncoder::WriteText(const char *text, size_t length) {
    if (mLineCount + length < kLineText) {
        std::memcpy(mLineBuffer.data() + mLineCount, text, length);
        mLineCount += length;
        return 0;
    }
    char lines[kBatchLines * kLineBytes];
    char *out = lines;
    const size_t rest = kLineText - mLineCount;
    std::memcpy(out, mLineBuffer.data(), kLineText);
    std::memcpy(out + mLineCount, text, rest);
    out[kLineText] = '\n';
    out += kLineBytes;
    const char *const end = text + length;
    for (text += rest; end - text >= static_cast<ptrdiff_t>(kLineText); text += kLineText) {
        std::memcpy(out, text, kLineText);
        out[kLineText] = '\n';
        out += kLineBytes;
    }
    mLineCount = static_cast<size_t>(end - text);
    std::memcpy(mLineBuffer.data(), text, mLineCount);
    const int16_t error = WriteBytes(mBuffer, lines, static_cast<size_t>(out - lines));
    if (error != 0) mLineCount = 0;
    return error;
}

int16_t ASCII85StreamEncoder::Close() {
    if (mGroupCount != 0) {
        const int16_t error = WriteBufferContents();
        if (error != 0) return error;
    }
    const int16_t error = WriteText("~>\n", 3);
    if (error != 0 || mLineCount == 0) return error;
    const size_t count = mLineCount;
    mLineCount = 0;
    return WriteBytes(mBuffer, mLineBuffer.data(), count);
}
