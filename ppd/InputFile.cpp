#include "ppd/InputFile.h"

#include <cerrno>
#include <fcntl.h>
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

/// Without O_NONBLOCK the mere opening of a FIFO waits for a writer.
int OpenRegularFile(const std::string &path) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0 || RegularFileSize(descriptor) >= 0) return descriptor;
    close(descriptor);
    return -1;
}

} // namespace

InputFile::InputFile(const std::string &path)
    : mDescriptor(OpenRegularFile(path)), mBuffer(new char[kBufferSize]) {
    Rewind();
}

InputFile::~InputFile() {
    if (mDescriptor >= 0) close(mDescriptor);
}

void InputFile::Rewind() {
    mPosition = mLimit = 0;
    mOffset = 0;
    mSize = RegularFileSize(mDescriptor);
    mReachedEnd = false;
}

bool InputFile::Fill() {
    mPosition = mLimit = 0;
    const off_t wanted = std::min<off_t>(kBufferSize, mSize - mOffset);
    ssize_t got = 0;
    if (wanted > 0) {
        do {
            got = pread(mDescriptor, mBuffer.get(), static_cast<size_t>(wanted), mOffset);
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
