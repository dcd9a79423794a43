#include "ppd/InputFile.h"

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace PPD {
namespace {

/// The size of a regular file, -1 for anything else.
off_t RegularFileSize(int descriptor) {
    struct stat info {};
    if (fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode)) return -1;
    return info.st_size;
}

} // namespace

InputFile::InputFile(const std::string &path)
    : mFile(OpenRegularFile(path)), mBuffer(new char[kBufferSize]) {
    Rewind();
}

void InputFile::Rewind() {
    mPosition = mLimit = 0;
    mOffset = 0;
    mSize = RegularFileSize(mFile.Get());
    mFailed = mFailed || (mFile && mSize < 0);
    mReachedEnd = false;
}

bool InputFile::Fill() {
    mPosition = mLimit = 0;
    const off_t wanted = std::min<off_t>(kBufferSize, mSize - mOffset);
    ssize_t got = 0;
    if (wanted > 0) {
        do {
            got = pread(mFile.Get(), mBuffer.get(), static_cast<size_t>(wanted), mOffset);
        } while (got < 0 && errno == EINTR);
    }
    if (got <= 0) {
        mFailed = mFailed || wanted > 0;
        mReachedEnd = true;
        return false;
    }
    mLimit = static_cast<size_t>(got);
    mOffset += got;
    return true;
}

} // namespace PPD
