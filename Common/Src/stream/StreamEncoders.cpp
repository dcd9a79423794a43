#include "Common/Src/stream/StreamEncoders.h"
#include "Common/Src/stream/Writebuffer.h"
#include <algorithm>
#include <cstring>

namespace {

constexpr size_t kLineText = 80;
constexpr size_t kLineBytes = kLineText + 1;

/// Blocks encoded at a time: their text and lines stay in the processor's nearest cache.
constexpr size_t kBatchBlocks = 64;
constexpr size_t kBatchText = kBatchBlocks * kASCII85BlockText;

int16_t WriteBytes(Writebuffer *buffer, const void *bytes, size_t length) {
    uint64_t count = length;
    return WBWrite(buffer, &count, bytes);
}

void CopyLines(const char *text, size_t lines, uint8_t *out) {
    for (; lines > 0; --lines, text += kLineText, out += kLineBytes) {
        std::memcpy(out, text, kLineText);
        out[kLineText] = '\n';
    }
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

int16_t ASCII85StreamEncoder::WriteText(const char *text, size_t length) {
    const size_t missing = kLineText - mLineCount;
    if (length < missing) {
        std::memcpy(mLineBuffer.data() + mLineCount, text, length);
        mLineCount += length;
        return 0;
    }
    const int16_t error = FinishLine(text, missing);
    return error != 0 ? error : WriteLines(text + missing, length - missing);
}

/// Fills the line up with the `missing` characters at `text` and hands it over.
int16_t ASCII85StreamEncoder::FinishLine(const char *text, size_t missing) {
    std::memcpy(mLineBuffer.data() + mLineCount, text, missing);
    mLineBuffer[kLineText] = '\n';
    mLineCount = 0;
    return WriteBytes(mBuffer, mLineBuffer.data(), kLineBytes);
}

/// Text at the start of a line: whole lines are formed in the Writebuffer's memory, all at once,
/// but for one that goes on in the next buffer. What does not fill a line waits in mLineBuffer.
int16_t ASCII85StreamEncoder::WriteLines(const char *text, size_t length) {
    while (length >= kLineText) {
        const WBRoom room = WBFreeRoom(mBuffer);
        const size_t lines = std::min<size_t>(length / kLineText, room.size / kLineBytes);
        const size_t count = std::max<size_t>(lines, 1) * kLineText;
        CopyLines(text, lines, room.data);
        const int16_t error =
            lines != 0 ? WBAccept(mBuffer, lines * kLineBytes) : FinishLine(text, kLineText);
        if (error != 0) return error;
        text += count;
        length -= count;
    }
    std::memcpy(mLineBuffer.data(), text, length);
    mLineCount = length;
    return 0;
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
