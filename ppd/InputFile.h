/// Buffered reading of a file whose content is not to be trusted.
#pragma once

#include "support/RegularFile.h"

#include <sys/types.h>

#include <memory>
#include <string>
#include <string_view>

namespace PPD {

/// The bytes of a regular file, read forwards through one buffer of fixed size. Anything else (a
/// FIFO or a device, which could keep us waiting; a folder; a file that cannot be opened) looks
/// empty. A file that cannot be read to its end looks as if it ended before, and Failed tells.
class InputFile {
public:
    static constexpr int kEnd = -1;

    explicit InputFile(const std::string &path);
    InputFile(const InputFile &) = delete;
    InputFile &operator=(const InputFile &) = delete;

    /// The next byte (0 to 255) and steps over it, or kEnd.
    int Get() {
        const int c = Peek();
        mPosition += c != kEnd;
        return c;
    }
    /// The next byte without stepping over it, or kEnd.
    int Peek() {
        if (mPosition == mLimit && !Fill()) return kEnd;
        return static_cast<unsigned char>(mBuffer[mPosition]);
    }
    /// The bytes at hand, empty only at the end; valid until the next call of anything else.
    std::string_view Pending() {
        if (mPosition == mLimit) (void)Fill();
        return {mBuffer.get() + mPosition, mLimit - mPosition};
    }
    /// Steps over `count` of the pending bytes.
    void Consume(size_t count) { mPosition += count; }

    /// Whether a read has met the end since the last Rewind.
    bool ReachedEnd() const { return mReachedEnd; }
    /// Whether the file has ever ended too early: it could not be read, or was cut short meanwhile.
    bool Failed() const { return mFailed; }
    /// Back to the first byte. The file ends where it ends now: one that is being appended to is
    /// not followed.
    void Rewind();

private:
    bool Fill();

    static constexpr size_t kBufferSize = 64 * 1024;
    FileDescriptor mFile;
    std::unique_ptr<char[]> mBuffer;
    size_t mPosition = 0, mLimit = 0; ///< of the unread bytes in mBuffer
    off_t mOffset = 0;                ///< in the file, of the byte after mLimit
    off_t mSize = 0;
    bool mReachedEnd = false;
    bool mFailed = false;
};

} // namespace PPD
